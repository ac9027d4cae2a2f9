// The camera's settings, named as in the card's files, and the one table that reading, writing and the dialog
// use.
#pragma once

#include <array>

namespace ql240 {

struct SettingValues {
    int resolutionvalue = 3;  // 1 VGA, 2 HD, 3 Full-HD
    int qualityvalue = 3;     // picture quality, 1 … 3
    int encodingvalue = 2;    // recording quality, 1 low, 2 high
    int framevalue = 3;       // 1: 15, 2: 24, 3: 30 frames per second
    int soundvalue = 1;       // sound recording, 1 on
    int speakervalue = 4;     // voice guidance, 0 off … 4
    int hourvalue = 1;        // kept as read, no control edits it
    int sensitivityvalue = 2; // shock preset 1 … 3, 0 none
    int autoparkingvalue = 1; // kept as read, no control edits it
    int parkingvalue = 2;     // 1 shock, 2 shock and motion
    int motionvalue = 2;      // motion sensitivity, 1 … 3
    int timeoffvalue = 8;     // battery timer, 1 … 8
    int batteryvalue1 = 121;  // cut-off of a 12 V car in tenths of a volt, 0 off
    int batteryvalue2 = 242;  // cut-off of a 24 V car in tenths of a volt, 0 off
    int speedValue = 1;       // the camera's unit, 1 km/h, 2 mph
    int tempoffvalue = 1;     // high-temperature protection
    int partitionvalue = 1;   // memory partition type, 1 A, 2 B, 3 C
    int securityvalue = 1;    // security LED, 0 off, 1 … 3 its modes
    int reversalvalue = 0;    // always 0
    int brightvalue = 4;      // 1 … 7, 4 neutral
    int sharpnessvalue = 4;   // always 4
    int contrastvalue = 4;    // 1 … 7, 4 neutral
    int evtoverwritevalue = 1;
    int manuoverwritevalue = 1;
    int motoverwritevalue = 1;
    int sensitivityvalue1 = 8; // shock sensitivity while driving, 1 … 10
    int sensitivityvalue2 = 7; // shock sensitivity while parked, 1 … 10
    int mutevalue = 0;         // 1 exactly when speakervalue is 0

    bool operator==(const SettingValues&) const = default;
};

// In which of the card's files a setting is stored.
enum SettingFile : unsigned {
    kInText = 1,       // a line of "setting.dat"
    kByteRead = 2,     // its byte file is read …
    kByteWritten = 4,  // … and written
    kByteUnsigned = 8, // its byte is 0 … 255 instead of −128 … 127
    kEverywhere = kInText | kByteRead | kByteWritten,
};

struct SettingKey {
    const char* name;
    int SettingValues::*value;
    unsigned files;
};

// In the order in which the files are read and written.
inline constexpr std::array kSettingKeys = std::to_array<SettingKey>({
    {"resolutionvalue", &SettingValues::resolutionvalue, kEverywhere},
    {"qualityvalue", &SettingValues::qualityvalue, kEverywhere},
    {"encodingvalue", &SettingValues::encodingvalue, kInText | kByteRead},
    {"framevalue", &SettingValues::framevalue, kEverywhere},
    {"soundvalue", &SettingValues::soundvalue, kEverywhere},
    {"speakervalue", &SettingValues::speakervalue, kEverywhere},
    {"hourvalue", &SettingValues::hourvalue, kEverywhere},
    {"sensitivityvalue", &SettingValues::sensitivityvalue, kEverywhere},
    {"autoparkingvalue", &SettingValues::autoparkingvalue, kEverywhere},
    {"parkingvalue", &SettingValues::parkingvalue, kEverywhere},
    {"motionvalue", &SettingValues::motionvalue, kEverywhere},
    {"timeoffvalue", &SettingValues::timeoffvalue, kEverywhere},
    {"batteryvalue1", &SettingValues::batteryvalue1, kEverywhere},
    {"batteryvalue2", &SettingValues::batteryvalue2, kEverywhere | kByteUnsigned},
    {"speedValue", &SettingValues::speedValue, kEverywhere},
    {"tempoffvalue", &SettingValues::tempoffvalue, kInText | kByteRead},
    {"partitionvalue", &SettingValues::partitionvalue, kEverywhere},
    {"securityvalue", &SettingValues::securityvalue, kEverywhere},
    {"reversalvalue", &SettingValues::reversalvalue, kByteWritten},
    {"brightvalue", &SettingValues::brightvalue, kEverywhere},
    {"sharpnessvalue", &SettingValues::sharpnessvalue, kByteWritten},
    {"contrastvalue", &SettingValues::contrastvalue, kEverywhere},
    {"evtoverwritevalue", &SettingValues::evtoverwritevalue, kEverywhere},
    {"manuoverwritevalue", &SettingValues::manuoverwritevalue, kEverywhere},
    {"motoverwritevalue", &SettingValues::motoverwritevalue, kEverywhere},
    {"sensitivityvalue1", &SettingValues::sensitivityvalue1, kEverywhere},
    {"sensitivityvalue2", &SettingValues::sensitivityvalue2, kEverywhere},
    {"mutevalue", &SettingValues::mutevalue, kEverywhere},
});

} // namespace ql240
