#include "mainwindow/keys_window.h"

#include <QCoreApplication>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>

#include "mainwindow/commands.h"
#include "mainwindow/main_window.h"
#include "widgets/skin_window.h"

namespace ql240 {
namespace {

constexpr int kMargin = 16;
constexpr int kRowSpacing = 6;
constexpr int kColumnSpacing = 24;

QString translated(const char* text) {
    return QCoreApplication::translate("ql240::KeysWindow", text);
}

QString keyText(const Command& command) {
    return QKeySequence(QKeyCombination(command.modifier, command.key)).toString(QKeySequence::NativeText);
}

void addRow(QGridLayout& grid, const QString& keys, const QString& does) {
    const int row = grid.rowCount();
    auto* key = new QLabel(keys);
    auto* text = new QLabel(does);
    for (QLabel* label : {key, text})
        label->setTextFormat(Qt::PlainText);
    key->setStyleSheet(QStringLiteral("color: %1;").arg(skin_colours::kAccent.name()));
    grid.addWidget(key, row, 0);
    grid.addWidget(text, row, 1);
}

// Keys of the same command share a row.
QWidget* keysOf() {
    auto* page = new QWidget;
    auto* grid = new QGridLayout(page);
    grid->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    grid->setVerticalSpacing(kRowSpacing);
    grid->setHorizontalSpacing(kColumnSpacing);
    for (std::size_t i = 0; i < kCommands.size(); ++i) {
        QString keys = keyText(kCommands[i]);
        while (i + 1 < kCommands.size() && kCommands[i + 1].id == kCommands[i].id)
            keys += QLatin1String(", ") + keyText(kCommands[++i]);
        QString does = translated(kCommands[i].does);
        if (kCommands[i].needsIncident)
            does = translated("%1 (in the Incident window)").arg(does);
        addRow(*grid, keys, does);
    }
    addRow(*grid, translated("Up, Down, typing"), translated("Choose a clip in the list"));
    return page;
}

// Runs the commands whose keys arrive at the keys window.
class KeyForwarder : public QObject {
public:
    KeyForwarder(MainWindow* window, QObject* parent) : QObject(parent), m_window(window) {}

    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() != QEvent::KeyPress)
            return false;
        const auto& key = *static_cast<QKeyEvent*>(event);
        const Command* command = commandOf(key, false);
        if (command && (!key.isAutoRepeat() || command->repeats))
            m_window->run(*command);
        return command;
    }

private:
    MainWindow* m_window;
};

} // namespace

SkinWindow* makeKeysWindow(MainWindow* window) {
    auto* keys = new SkinWindow(window, translated("QL240 Keys"), keysOf());
    keys->installEventFilter(new KeyForwarder(window, keys));
    return keys;
}

} // namespace ql240
