// The main window's dialogs, answered by the test.
#pragma once

#include <QStringList>
#include <functional>

#include "mainwindow/window_dialogs.h"
#include "platform/folder_dialogs.h"

namespace ql240 {

// A folder dialog whose user has already decided.
struct FakeFolderDialogs : FolderDialogs {
    std::optional<QString> choice;
    int shown = 0;

    std::optional<QString> browseForFolder(QWidget*, const FolderCallback&) override {
        ++shown;
        return choice;
    }
};

// What the window asked, and the user's answers.
struct Answers {
    QStringList warnings; // "title: text"
    QString openFile;
    QString saveFile;
    QStringList asked; // captions, proposed names and filters of the file dialogs
    std::function<bool(QPrinter&)> print = [](QPrinter&) { return false; };
    std::function<void()> meanwhile = [] {}; // runs within every dialog except the printer's
};

struct FakeWindowDialogs : WindowDialogs {
    explicit FakeWindowDialogs(Answers& given) : answers(given) {}

    void warn(QWidget*, const QString& title, const QString& text) override {
        answers.warnings << title + QStringLiteral(": ") + text;
        answers.meanwhile();
    }
    QString askOpenFile(QWidget*, const QString& caption, const QString& filter) override {
        answers.asked << caption << filter;
        answers.meanwhile();
        return answers.openFile;
    }
    QString askSaveFile(QWidget*, const QString& caption, const QString& name,
                        const QString& filter) override {
        answers.asked << caption << name << filter;
        answers.meanwhile();
        return answers.saveFile;
    }
    bool askPrinter(QWidget*, QPrinter& printer) override { return answers.print(printer); }

    Answers& answers;
};

} // namespace ql240
