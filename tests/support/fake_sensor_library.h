// A sensor library that answers from a function of time, up to `lastMs`, and logs its calls.
#pragma once

#include <QByteArray>
#include <functional>
#include <vector>

#include "platform/sensor_library.h"

namespace ql240 {

struct FakeSensorLibrary : SensorLibrary {
    struct Answer {
        std::int32_t latitude = 37409571;
        std::int32_t longitude = 127129253;
        char latitudeLetter = 'N';
        char longitudeLetter = 'E';
        std::int32_t speed = 50;
        std::int16_t x = 0;
        std::int16_t y = 0;
        std::int16_t z = 0;
    };

    bool hasData = true;
    std::int64_t lastMs = 1000000;
    std::int64_t lastAccelerationMs = 1000000;
    std::function<Answer(std::int64_t)> answer = [](std::int64_t) { return Answer(); };
    QByteArray path;
    std::vector<std::int64_t> askedTimes;
    int accelerationCalls = 0;

    Handle getInformationData(const char* clip) override {
        path = clip;
        return hasData ? 7 : 0;
    }
    int getCreateTime(Handle, char* buffer) override {
        buffer[0] = 0;
        return 0;
    }
    int getLatLonSpeed(Handle, std::int64_t timeMs, std::int32_t* latitude, std::int32_t* longitude,
                       std::int8_t* latitudeLetter, std::int8_t* longitudeLetter,
                       std::int32_t* speed) override {
        askedTimes.push_back(timeMs);
        const Answer a = answer(timeMs);
        *latitude = a.latitude;
        *longitude = a.longitude;
        *latitudeLetter = static_cast<std::int8_t>(a.latitudeLetter);
        *longitudeLetter = static_cast<std::int8_t>(a.longitudeLetter);
        *speed = a.speed;
        return timeMs <= lastMs;
    }
    int getAccXYZ(Handle, std::int64_t timeMs, std::int16_t* x, std::int16_t* y, std::int16_t* z) override {
        ++accelerationCalls;
        const Answer a = answer(timeMs);
        *x = a.x;
        *y = a.y;
        *z = a.z;
        return timeMs <= lastAccelerationMs;
    }
};

} // namespace ql240
