#include "support/private_bus.h"

#include <csignal>

#include <QFile>

namespace ql240 {
namespace {

constexpr int kStartLimitMs = 10000;

bool waitForLine(QProcess& process) {
    return process.waitForStarted(kStartLimitMs) && process.waitForReadyRead(kStartLimitMs);
}

void end(QProcess& process) {
    process.kill();
    process.waitForFinished(kStartLimitMs);
}

} // namespace

PrivateBus::PrivateBus() {
    QFile config(m_folder.filePath("bus.conf"));
    if (config.open(QIODevice::WriteOnly)) {
        config.write("<busconfig><type>session</type><listen>" + address().toUtf8() +
                     "</listen><policy context=\"default\"><allow send_destination=\"*\"/>"
                     "<allow receive_sender=\"*\"/><allow own=\"*\"/></policy></busconfig>");
    }
}

PrivateBus::~PrivateBus() {
    stopDrives();
    stop();
}

QString PrivateBus::address() const {
    return "unix:path=" + m_folder.filePath("bus");
}

bool PrivateBus::start() {
    m_daemon.start("dbus-daemon",
                   {"--nofork", "--print-address", "--config-file=" + m_folder.filePath("bus.conf")});
    return waitForLine(m_daemon);
}

void PrivateBus::stop() {
    end(m_daemon);
    QFile::remove(m_folder.filePath("bus"));
}

void PrivateBus::freeze(bool frozen) {
    ::kill(pid_t(m_daemon.processId()), frozen ? SIGSTOP : SIGCONT);
}

bool PrivateBus::startDrives(const QStringList& arguments) {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("DBUS_SYSTEM_BUS_ADDRESS", address());
    m_drives.setProcessEnvironment(environment);
    m_drives.start(QStringLiteral(QL240_CARD_SERVICE), arguments);
    return waitForLine(m_drives);
}

void PrivateBus::stopDrives() {
    end(m_drives);
}

} // namespace ql240
