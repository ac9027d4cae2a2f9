#include "support/silent_file_system.h"

#include <fcntl.h>
#include <linux/fuse.h>
#include <sys/mman.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QByteArray>
#include <QFile>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <new>

namespace ql240 {
namespace {

constexpr size_t kRequestSize = 256 * 1024;

struct Answer {
    fuse_out_header header = {};
    char body[sizeof(fuse_init_out) + sizeof(fuse_attr_out)] = {};
};

void send(int device, Answer& answer, uint64_t unique, int error, size_t bodySize) {
    answer.header.unique = unique;
    answer.header.error = -error;
    answer.header.len = uint32_t(sizeof(fuse_out_header) + (error ? 0 : bodySize));
    if (::write(device, &answer, answer.header.len) < 0 && errno != ENOENT)
        ::_exit(1);
}

// Serves an empty folder: it has attributes and can be listed, but contains nothing.
void serve(int device, const fuse_in_header& request) {
    Answer answer;
    size_t bodySize = 0;
    int error = 0;
    switch (request.opcode) {
        case FUSE_INIT: {
            fuse_init_out init = {};
            init.major = FUSE_KERNEL_VERSION;
            init.minor = FUSE_KERNEL_MINOR_VERSION;
            init.max_write = 4096;
            std::memcpy(answer.body, &init, bodySize = sizeof init);
            break;
        }
        case FUSE_GETATTR: {
            fuse_attr_out attributes = {};
            attributes.attr.ino = FUSE_ROOT_ID;
            attributes.attr.mode = S_IFDIR | 0755;
            attributes.attr.nlink = 2;
            std::memcpy(answer.body, &attributes, bodySize = sizeof attributes);
            break;
        }
        case FUSE_OPENDIR:
            bodySize = sizeof(fuse_open_out);
            break;
        case FUSE_READDIR:
        case FUSE_RELEASEDIR:
        case FUSE_ACCESS:
            break;
        case FUSE_STATFS:
            bodySize = sizeof(fuse_statfs_out);
            break;
        default:
            error = request.opcode == FUSE_LOOKUP ? ENOENT : ENOSYS;
    }
    send(device, answer, request.unique, error, bodySize);
}

[[noreturn]] void runServer(int device, const std::atomic<bool>& silent) {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    static char buffer[kRequestSize];
    while (true) {
        const ssize_t size = ::read(device, buffer, sizeof buffer);
        if (size < 0 && errno != EINTR && errno != ENOENT)
            ::_exit(0);
        fuse_in_header request = {};
        if (size < ssize_t(sizeof request) || silent.load())
            continue;
        std::memcpy(&request, buffer, sizeof request);
        if (request.opcode != FUSE_FORGET && request.opcode != FUSE_INTERRUPT &&
            request.opcode != FUSE_BATCH_FORGET)
            serve(device, request);
    }
}

} // namespace

SilentFileSystem::SilentFileSystem(const QString& folder) : m_folder(folder) {
    void* shared =
        ::mmap(nullptr, sizeof *m_silent, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    const int device = ::open("/dev/fuse", O_RDWR | O_CLOEXEC);
    if (shared == MAP_FAILED || device < 0)
        return;
    m_silent = new (shared) std::atomic<bool>(false);
    const QByteArray options = "fd=" + QByteArray::number(device) +
                               ",rootmode=40000,user_id=" + QByteArray::number(::getuid()) +
                               ",group_id=" + QByteArray::number(::getgid());
    m_mounted = ::mount("silent", QFile::encodeName(folder).constData(), "fuse", MS_NOSUID | MS_NODEV,
                        options.constData()) == 0;
    m_server = m_mounted ? ::fork() : -1;
    if (m_server == 0)
        runServer(device, *m_silent);
    ::close(device);
}

SilentFileSystem::~SilentFileSystem() {
    end();
    if (m_silent)
        ::munmap(m_silent, sizeof *m_silent);
}

void SilentFileSystem::end() {
    if (m_server > 0) {
        ::kill(m_server, SIGKILL);
        ::waitpid(m_server, nullptr, 0);
    }
    m_server = -1;
    if (m_mounted)
        ::umount2(QFile::encodeName(m_folder).constData(), MNT_DETACH);
    m_mounted = false;
}

} // namespace ql240
