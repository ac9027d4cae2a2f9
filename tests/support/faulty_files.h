// The card's file operations with one fault: counts every operation and makes the chosen one fail.
#pragma once

#include <csignal>

#include <cerrno>

#include "settings/card_files.h"

namespace ql240 {

enum class Fault { None, FailOne, FailFromThere, Kill };

class FaultyFiles : public CardFiles {
public:
    // Operation `at` from now on, counted from 0, fails.
    void arm(Fault fault, int at) {
        m_fault = fault;
        m_at = at;
        m_count = 0;
    }
    int count() const { return m_count; }

    int openFolder(int folder, const QByteArray& name) override {
        return fails() ? -1 : CardFiles::openFolder(folder, name);
    }
    int open(int folder, const QByteArray& name, int flags) override {
        return fails() ? -1 : CardFiles::open(folder, name, flags);
    }
    ssize_t read(int file, char* to, size_t count) override {
        return fails() ? -1 : CardFiles::read(file, to, count);
    }
    ssize_t write(int file, const char* from, size_t count) override {
        return fails() ? -1 : CardFiles::write(file, from, count);
    }
    off_t size(int file) override { return fails() ? -1 : CardFiles::size(file); }
    int cut(int file, off_t size) override { return fails() ? -1 : CardFiles::cut(file, size); }
    // Only counted: real syncing costs seconds, and power cuts aren't tested.
    int sync(int) override { return fails() ? -1 : 0; }
    int rename(int folder, const QByteArray& from, const QByteArray& to) override {
        return fails() ? -1 : CardFiles::rename(folder, from, to);
    }
    int remove(int folder, const QByteArray& name) override {
        return fails() ? -1 : CardFiles::remove(folder, name);
    }
    int makeFolder(int folder, const QByteArray& name) override {
        return fails() ? -1 : CardFiles::makeFolder(folder, name);
    }
    int syncFolder(int) override { return fails() ? -1 : 0; }
    bool list(int folder, const std::function<void(const QByteArray&)>& visit) override {
        return !fails() && CardFiles::list(folder, visit);
    }

private:
    bool fails() {
        const int number = m_count++;
        errno = EIO;
        if (m_fault == Fault::Kill && number == m_at)
            ::raise(SIGKILL);
        return (m_fault == Fault::FailOne && number == m_at) ||
               (m_fault == Fault::FailFromThere && number >= m_at);
    }

    Fault m_fault = Fault::None;
    int m_at = 0;
    int m_count = 0;
};

} // namespace ql240
