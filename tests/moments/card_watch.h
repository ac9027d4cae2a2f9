// Watches all files that a run must not change. A change on a card must match what a confirmed settings
// dialog showed, and may differ from the previous values only where the user chose something. Main thread.
#pragma once

#include <QByteArray>
#include <QString>

#include <map>
#include <set>
#include <vector>

#include "settings/option_rows.h"

namespace ql240 {
class ConfigWindow;
}

namespace ql240::moments {

class World;

class CardWatch {
public:
    explicit CardWatch(World& world);
    ~CardWatch();
    Q_DISABLE_COPY_MOVE(CardWatch)

    // Records the settings dialog's current state; null if none is open.
    void look(const ConfigWindow* dialog);
    void confirmed() { m_dialogs.back().confirmed = true; }
    void chose(int RowValues::*value, int choice);

    // Compares all files with their allowed contents.
    void check();

private:
    struct File {
        qint64 stamp = 0; // changes with every write
        QByteArray bytes;
    };
    using Files = std::map<QString, File>;
    // What a dialog shows, or showed last: it may still save after it was closed.
    struct Dialog {
        bool confirmed = false;
        QString folder;
        RowValues shown;
        std::set<std::pair<QString, int>> chosen;

        bool maySave(const QString& path, const QByteArray& before, const QByteArray& now) const;
    };

    void listen();
    bool isTouched() const;
    Files readAll() const;
    bool mayChange(const QString& path, const QByteArray& before, const QByteArray& now) const;

    World& m_world;
    int m_notes; // inotify descriptor for everything below the world's folder
    Files m_files;
    const ConfigWindow* m_open = nullptr; // only compared with the next one, never dereferenced
    std::vector<Dialog> m_dialogs;
};

} // namespace ql240::moments
