// A D-Bus bus of the test's own, and on it the drives service that stands in for UDisks2. Setting the system
// bus's address is left to the test. Everything ends with the object.
#pragma once

#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

namespace ql240 {

class PrivateBus {
public:
    PrivateBus();
    ~PrivateBus();
    Q_DISABLE_COPY_MOVE(PrivateBus)

    // False if the bus daemon isn't installed or didn't come up.
    bool start();
    void stop();
    QString address() const;

    // Stops the whole bus in its tracks, or lets it go on: it accepts connections and answers nothing.
    void freeze(bool frozen);

    // Starts the drives service with the given arguments and waits until it has its name.
    bool startDrives(const QStringList& arguments);
    void stopDrives();

private:
    QTemporaryDir m_folder;
    QProcess m_daemon;
    QProcess m_drives;
};

} // namespace ql240
