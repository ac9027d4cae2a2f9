// The time zones known to the camera, identified by their hexadecimal Microsoft time-zone index, and the hour
// bars that select them. A bias is in minutes: UTC = local time + bias.
#pragma once

#include <array>

namespace ql240 {

struct TimeZone {
    const char* code;
    const char* name;
    int biasMinutes;
};

// clang-format off
inline constexpr std::array<TimeZone, 90> kTimeZones = {{
    {"0x0", "(UTC-12:00) International Date Line West", 720},
    {"0x1", "(UTC-11:00) Midway Island, Samoa", 660},
    {"0x2", "(UTC-10:00) Hawaii", 600},
    {"0x3", "(UTC-09:00) Alaska", 540},
    {"0x80000045", "(UTC-08:00) Tijuana, Baja California", 480},
    {"0x4", "(UTC-08:00) Pacific Time (US and Canada Tijuana", 480},
    {"0xA", "(UTC-07:00) Mountain Time (US and Canada)", 420},
    {"0xF", "(UTC-07:00) Arizona", 420},
    {"0xD", "(UTC-07:00) Chihuahua, La Paz, Mazatlan - New", 420},
    {"0x1E", "(UTC-06:00) Guadalajara, Mexico City, Monterrey - New", 360},
    {"0x14", "(UTC-06:00) Central Time (US and Canada)", 360},
    {"0x19", "(UTC-06:00) Saskatchewan", 360},
    {"0x23", "(UTC-05:00) Eastern (US and Canada)", 300},
    {"0x28", "(UTC-05:00) Indiana (East)", 300},
    {"0x2D", "(UTC-05:00) Bogota, Lima, Quito", 300},
    {"0x8000004B", "(UTC-04:30) Caracas", 270},
    {"0x32", "(UTC-04:00) Atlantic Time (Canada)", 240},
    {"0x37", "(UTC-04:00) Georgetown, La Paz, San Juan", 240},
    {"0x38", "(UTC-04:00) Santiago", 240},
    {"0x80000048", "(UTC-04:00) Manaus", 240},
    {"0x80000051", "(UTC-04:00) Asuncion", 240},
    {"0x3C", "(UTC-03:30) Newfoundland", 210},
    {"0x80000049", "(UTC-03:00) Montevideo", 180},
    {"0x46", "(UTC-03:00) Georgetown", 180},
    {"0x49", "(UTC-03:00) Greenland", 180},
    {"0x80000040", "(UTC-03:00) Buenos Aires", 180},
    {"0x41", "(UTC-03:00) Brasilia", 180},
    {"0x4B", "(UTC-02:00) Mid-Atlantic", 120},
    {"0x50", "(UTC-01:00) Azores", 60},
    {"0x53", "(UTC-01:00) Cape Verde Islands", 60},
    {"0x55", "(UTC) Greenwich Mean Time: Dublin, Edinburgh, Lisbon, London", 0},
    {"0x5A", "(UTC) Monrovia, Reykjavik", 0},
    {"0x8000004D", "(UTC) Casablanca", 0},
    {"0x80000050", "(UTC) Coordinated Universal Time", 0},
    {"0x69", "(UTC+01:00) Brussels, Copenhagen, Madrid, Paris", -60},
    {"0x64", "(UTC+01:00) Sarajevo, Skopje, Warsaw, Zagreb", -60},
    {"0x6E", "(UTC+01:00) Amsterdam, Berlin, Bern, Rome, Stockholm, Vienna", -60},
    {"0x71", "(UTC+01:00) West Central Africa", -60},
    {"0x5F", "(UTC+01:00) Belgrade, Bratislava, Budapest, Ljubljana, Prague", -60},
    {"0x80000046", "(UTC+02:00) Windhoek", -120},
    {"0x73", "(UTC+02:00) Minsk", -120},
    {"0x78", "(UTC+02:00) Cairo", -120},
    {"0x7D", "(UTC+02:00) Helsinki, Kiev, Riga, Sofia, Tallinn, Vilnius", -120},
    {"0x82", "(UTC+02:00) Athens, Bucharest, Istanbul", -120},
    {"0x87", "(UTC+02:00) Jerusalem", -120},
    {"0x8C", "(UTC+02:00) Harare, Pretoria", -120},
    {"0x80000041", "(UTC+02:00) Beirut", -120},
    {"0x80000042", "(UTC+02:00) Amman", -120},
    {"0x80000047", "(UTC+03:00) Tbilisi", -180},
    {"0x91", "(UTC+03:00) Moscow, St. Petersburg, Volgograd", -180},
    {"0x96", "(UTC+03:00) Kuwait, Riyadh", -180},
    {"0x9B", "(UTC+03:00) Nairobi", -180},
    {"0x9E", "(UTC+03:00) Baghdad", -180},
    {"0xA0", "(UTC+03:30) Tehran", -210},
    {"0xA5", "(UTC+04:00) Abu Dhabi, Muscat", -240},
    {"0xAA", "(UTC+04:00) Baku, Tbilisi, Yerevan", -240},
    {"0x8000004A", "(UTC+04:00) Yerevan", -240},
    {"0x8000004F", "(UTC+04:00) Port Louis", -240},
    {"0xAF", "(UTC+04:30) Kabul", -270},
    {"0x8000004E", "(UTC+05:00) Islamabad, Karachi", -300},
    {"0xB4", "(UTC+05:00) Ekaterinburg", -300},
    {"0xB9", "(UTC+05:00) Tashkent", -300},
    {"0xC0", "(UTC+05:30) Chennai, Kolkata, Mumbai, New Delhi", -330},
    {"0xC1", "(UTC+05:45) Kathmandu", -345},
    {"0xC3", "(UTC+06:00) Astana, Dhaka", -360},
    {"0xC8", "(UTC+06:00) Sri Jayawardenepura", -360},
    {"0xC9", "(UTC+06:00) Almaty, Novosibirsk", -360},
    {"0xCB", "(UTC+06:30) Yangon (Rangoon)", -390},
    {"0xCD", "(UTC+07:00) Bangkok, Hanoi, Jakarta", -420},
    {"0xCF", "(UTC+07:00) Krasnoyarsk", -420},
    {"0xD2", "(UTC+08:00) Beijing, Chongqing, Hong Kong, Urumqi", -480},
    {"0xD7", "(UTC+08:00) Kuala Lumpur, Singapore", -480},
    {"0xDC", "(UTC+08:00) Taipei", -480},
    {"0xE1", "(UTC+08:00) Perth", -480},
    {"0xE3", "(UTC+08:00) Irkutsk, Ulaanbaatar", -480},
    {"0xE6", "(UTC+09:00) Seoul", -540},
    {"0xEB", "(UTC+09:00) Osaka, Sapporo, Tokyo", -540},
    {"0xF0", "(UTC+09:00) Yakutsk", -540},
    {"0xF5", "(UTC+09:00) Darwin", -540},
    {"0xFA", "(UTC+09:30) Adelaide", -570},
    {"0x113", "(UTC+10:00) Guam, Port Moresby", -600},
    {"0xFF", "(UTC+10:00) Canberra, Melbourne, Sydney", -600},
    {"0x104", "(UTC+10:00) Brisbane", -600},
    {"0x109", "(UTC+10:00) Hobart", -600},
    {"0x10E", "(UTC+10:00) Vladivostok", -600},
    {"0x118", "(UTC+11:00) Magadan, Solomon Islands, New Caledonia", -660},
    {"0x11D", "(UTC+12:00) Fiji, Kamchatka, Marshall Is.", -720},
    {"0x122", "(UTC+12:00) Auckland, Wellington", -720},
    {"0x80000052", "(UTC+12:00) Petropavlovsk-Kamchatsky", -720},
    {"0x12C", "(UTC+13:00) Nuku'alofa", -780},
}};
// clang-format on

// One bar for each whole hour from UTC−12 to UTC+12: its text and position, and the row of the table (from 1)
// that it selects. The last bar skips row 87.
struct HourBar {
    const char* text;
    int x;
    int width;
    int firstRow;
};

// clang-format off
inline constexpr std::array<HourBar, 25> kHourBars = {{
    {"-12", 29, 21, 1},
    {"-11", 52, 23, 2},
    {"-10", 75, 23, 3},
    {"-9", 98, 23, 4},
    {"-8", 121, 23, 5},
    {"-7", 144, 23, 7},
    {"-6", 167, 23, 10},
    {"-5", 190, 23, 13},
    {"-4", 213, 23, 17},
    {"-3", 235, 22, 23},
    {"-2", 258, 23, 28},
    {"-1", 281, 23, 29},
    {"UTC", 304, 23, 31},
    {"+1", 327, 23, 35},
    {"+2", 350, 23, 40},
    {"+3", 373, 23, 49},
    {"+4", 396, 23, 55},
    {"+5", 418, 22, 60},
    {"+6", 441, 23, 65},
    {"+7", 464, 23, 69},
    {"+8", 486, 22, 71},
    {"+9", 509, 23, 76},
    {"+10", 532, 23, 81},
    {"+11", 555, 23, 86},
    {"+12", 578, 23, 88},
}};
// clang-format on

// The bar whose group contains `row` (from 1): the last one that doesn't start after it.
constexpr int barOfRow(int row) {
    int bar = 0;
    while (bar + 1 < static_cast<int>(kHourBars.size()) &&
           kHourBars[static_cast<std::size_t>(bar + 1)].firstRow <= row)
        ++bar;
    return bar;
}

} // namespace ql240
