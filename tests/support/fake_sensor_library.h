// A sensor library that answers from a function of time, up to `lastMs`, and logs its calls. Its destructor
// waits for the threads that read clips with it.
#pragma once

#include <QByteArray>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
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

    ~FakeSensorLibrary() override {
        std::unique_lock lock(m_mutex);
        m_returned.wait(lock, [this] { return m_lent == 0; });
    }
    // For Host::makeSensorLibrary.
    std::shared_ptr<SensorLibrary> lend() {
        const std::lock_guard lock(m_mutex);
        ++m_lent;
        return {this, [](FakeSensorLibrary* self) {
                    const std::lock_guard returning(self->m_mutex);
                    --self->m_lent;
                    self->m_returned.notify_one();
                }};
    }

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

private:
    std::mutex m_mutex;
    std::condition_variable m_returned;
    int m_lent = 0;
};

} // namespace ql240
