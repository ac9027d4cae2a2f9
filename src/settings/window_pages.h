// The eight pages of the settings dialog. Seven edit rows; the last asks to confirm a change of the memory
// partition.
#pragma once

#include "settings/settings_page.h"

namespace ql240 {

class WindowBtn0 : public SettingsPage {
    Q_OBJECT
public:
    explicit WindowBtn0(QWidget* parent) : SettingsPage(parent, pages::kPages[0]) {}
};

class WindowBtn1 : public SettingsPage {
    Q_OBJECT
public:
    explicit WindowBtn1(QWidget* parent) : SettingsPage(parent, pages::kPages[1]) {}
};

class WindowBtn2 : public SettingsPage {
    Q_OBJECT
public:
    explicit WindowBtn2(QWidget* parent) : SettingsPage(parent, pages::kPages[2]) {}
};

class WindowBtn3 : public SettingsPage {
    Q_OBJECT
public:
    explicit WindowBtn3(QWidget* parent) : SettingsPage(parent, pages::kPages[3]) {}
};

class WindowBtn4 : public SettingsPage {
    Q_OBJECT
public:
    explicit WindowBtn4(QWidget* parent) : SettingsPage(parent, pages::kPages[4]) {}
};

class WindowBtn5 : public SettingsPage {
    Q_OBJECT
public:
    explicit WindowBtn5(QWidget* parent) : SettingsPage(parent, pages::kPages[5]) {}
};

class WindowBtn6 : public SettingsPage {
    Q_OBJECT
public:
    explicit WindowBtn6(QWidget* parent) : SettingsPage(parent, pages::kPages[6]) {}
};

class WindowBtn7 : public SettingsPage {
    Q_OBJECT
public:
    explicit WindowBtn7(QWidget* parent);
};

} // namespace ql240
