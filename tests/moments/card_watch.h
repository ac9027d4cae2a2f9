// Watches every file that a run may not touch. What changes on a card must be what a confirmed settings
// dialog showed: of the values before, only those may differ that the user has chosen. Main thread.
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

    // The settings dialog as it is now; null where none is open.
    void look(const ConfigWindow* dialog);
    void confirmed() { m_dialogs.back().confirmed = true; }
    void chose(int RowValues::*value, int choice);

    // Compares all files with what they may be.
    void check();

private:
    struct File {
        qint64 stamp = 0; // changes with every write
        QByteArray bytes;
    };
    using Files = std::map<QString, File>;
    // What a dialog shows, or showed last: it may save after it was closed.
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
    int m_notes; // of changes below the world's folder
    Files m_files;
    const ConfigWindow* m_open = nullptr; // to be told apart from the one before, not to be used
    std::vector<Dialog> m_dialogs;
};

} // namespace ql240::moments
