// The settings dialog: the camera's configuration on its card, and the viewer's language and speed unit. Runs
// modally from the main window, or as the only window of the program. Interface thread only. DialogCard
// accesses the card; the dialog stays usable however slow the card reader is.
#pragma once

#include <QDialog>
#include <QPixmap>
#include <QPointer>
#include <array>

#include "base/background_jobs.h"
#include "base/preferences.h"
#include "settings/choice_row.h"
#include "settings/dialog_card.h"
#include "widgets/window_helper.h"

class QComboBox;
class QLabel;

namespace ql240 {

class FlatField;
class ImageButton;
class SettingsPage;

class ConfigWindow : public QDialog, private RowOwner {
    Q_OBJECT
public:
    explicit ConfigWindow(QWidget* parent = nullptr);

    // The viewer's own speed unit: set it before the dialog runs, read it after the dialog was accepted.
    SpeedUnit viewerSpeedUnit() const { return static_cast<SpeedUnit>(m_values.viewerSpeedUnit); }
    void setViewerSpeedUnit(SpeedUnit unit);

    const RowValues& values() const { return m_values; }
    const DialogCard& card() const { return m_card; }
    // The folder that OK writes to; empty until a drive has been read.
    QString settingFolder() const { return m_card.settingFolder(); }

public Q_SLOTS:
    void OnSlotsOK();
    void OnSlotsCancel();
    void OnSlotsExit();
    void OnSlotsGetTime();
    void OnSlotsGmt();
    // Copies a screen saver to the card, if there is a card.
    void OnSlotsEditor();
    void OnSlotsBtn0();
    void OnSlotsBtn1();
    void OnSlotsBtn2();
    void OnSlotsBtn3();
    void OnSlotsBtn4();
    void OnSlotsBtn5();
    void OnSlotsBtn6();
    // Loads the drive at that index of the drive list.
    void loadData(int index);
    // Saves to the card and applies the viewer's preferences. Returns once the card has been found, read and
    // written, or the user has cancelled the wait.
    void Onapply();
    // Shows the firmware and microcontroller versions. The car's battery system determines which cut-off page
    // can be opened.
    void applyVersion(const QString& versionText);
    void reject() override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void changeEvent(QEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void enterEvent(QEnterEvent* event) override;

private:
    const RowValues& rowValues() const override { return m_values; }
    bool isOperable(const OptionRow& row) const override;
    void choose(const OptionRow& row, int value) override;

    // config_window_parts.cpp: the widgets, created once.
    void addTopLists();
    void addClock();
    void addPageButtons();
    void addOtherButtons();
    void addLanguageList();
    void nameForScreenReaders();

    // config_window_card.cpp: shows what the card holds and saves to it.
    void fillDrives();
    void showDrive();
    void showContents();
    // False if the user cancelled the wait.
    bool apply();
    void applyPreferences();
    void retranslate();
    void loadScreenSaver(const QString& card);

    QPixmap page() const;
    void pickPartition(int value);
    void applyShockPreset();
    void deriveShockPreset();
    void applySetClock();
    bool runPage(SettingsPage&& page);
    // Shows the values, and enables what can be operated.
    void refresh();
    bool isLocked(const QWidget* widget) const;
    void lockWidgets();
    void lockPageButtons();

    RowValues m_values;
    QString m_battery; // from the card's version file
    QString m_zoneCode;
    int m_zoneBias = 0;
    DialogCard m_card;

    QPixmap m_dstMark;
    MarkImages m_marks;

    QLabel* m_title = nullptr;
    QComboBox* m_drives = nullptr;
    QComboBox* m_firmware = nullptr;
    QComboBox* m_micom = nullptr;
    QComboBox* m_languages = nullptr;
    FlatField* m_clock = nullptr;
    std::array<FlatField*, 2> m_dst = {};
    ImageButton* m_getTime = nullptr;
    ImageButton* m_zone = nullptr;
    ImageButton* m_screenSaver = nullptr;
    ImageButton* m_ok = nullptr;
    ImageButton* m_cancel = nullptr;
    ImageButton* m_close = nullptr;
    std::array<ImageButton*, 7> m_pageButtons = {};
    QList<ChoiceRow*> m_rows;
    QPointer<QWidget> m_lostFocus; // had the focus when it was disabled
    BackgroundJobs m_copies;
    FlHlp m_helper;
};

} // namespace ql240
