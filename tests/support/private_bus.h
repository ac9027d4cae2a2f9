// A private D-Bus bus with the drives service that replaces UDisks2. The test sets the system bus address
// itself. Bus and service end with the object.
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

    // False if the bus daemon isn't installed or didn't start.
    bool start();
    void stop();
    QString address() const;

    // Stops or continues the bus: while stopped it accepts connections and answers nothing.
    void freeze(bool frozen);

    // Starts the drives service with these arguments and waits until it owns its name.
    bool startDrives(const QStringList& arguments);
    void stopDrives();

private:
    QTemporaryDir m_folder;
    QProcess m_daemon;
    QProcess m_drives;
};

} // namespace ql240
