// The settings dialog: the camera's configuration on its card, and the viewer's language and speed unit. Runs
// modally from the main window or as the only window of the program. Interface thread only; what touches the
// card runs on threads of its own, and the dialog stays usable whatever the card reader does.
#pragma once

#include <QDialog>
#include <QPixmap>
#include <QTimer>
#include <array>
#include <chrono>
#include <optional>
#include <vector>

#include "base/background_jobs.h"
#include "settings/card_jobs.h"
#include "settings/choice_row.h"
#include "widgets/window_helper.h"

class QComboBox;
class QEventLoop;
class QLabel;

namespace ql240 {

class FlatField;
class ImageButton;
class SettingsPage;

enum class SpeedUnit : qint32 { Kmh = 1, Mph = 2 };

class ConfigWindow : public QDialog, private RowOwner {
    Q_OBJECT
public:
    explicit ConfigWindow(QWidget* parent = nullptr);

    // The viewer's own speed unit: set before the dialog runs, read after it was accepted.
    qint32 viewerSpeedUnit() const { return m_values.viewerSpeedUnit; }
    void setViewerSpeedUnit(qint32 unit);

    const RowValues& values() const { return m_values; }
    // The folder that OK writes to; empty while no drive has been read.
    const QString& settingFolder() const { return m_settingFolder; }

public Q_SLOTS:
    void OnSlotsOK();
    void OnSlotsCancel();
    void OnSlotsExit();
    void OnSlotsGetTime();
    void OnSlotsGmt();
    void OnSlotsEditor();
    void OnSlotsBtn0();
    void OnSlotsBtn1();
    void OnSlotsBtn2();
    void OnSlotsBtn3();
    void OnSlotsBtn4();
    void OnSlotsBtn5();
    void OnSlotsBtn6();
    // Loads the drive of that entry of the drive list.
    void loadData(int index);
    // Saves to the card and applies the viewer's preferences; returns when the card has been written or the
    // user gave up waiting for it.
    void Onapply();
    // Shows firmware and micom version, and lets the car's battery system decide which cut-off page opens.
    void applyVersion(const QString& versionText);
    void reject() override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    // What a card may keep the interface waiting before the dialog goes on without it.
    static constexpr std::chrono::milliseconds kPatience{80};

    const RowValues& rowValues() const override { return m_values; }
    bool isOperable(const OptionRow& row) const override;
    void choose(const OptionRow& row, int value) override;

    // config_window_parts.cpp: the widgets, made once.
    void addTopLists();
    void addClock();
    void addPageButtons();
    void addOtherButtons();
    void addLanguageList();
    void nameForScreenReaders();

    // config_window_card.cpp: loading, of all drives at first, to find the card among them, and of one when
    // it is chosen; and saving.
    void readDrives();
    void readContents(const QStringList& drives);
    void keepContents(int index, const CardContents& contents);
    void pickCard();
    void showContents(const CardContents& contents);
    void showNoAnswer();
    // False if the user gave up waiting.
    bool saveToCard();
    bool waitForWriter();
    void applyPreferences();
    void retranslate();

    QPixmap page() const;
    void pickPartition(int value);
    void applyShockPreset();
    void deriveShockPreset();
    void applySetClock();
    void runPage(SettingsPage& page);
    void refresh();

    RowValues m_values;
    QString m_drive; // the drive text whose folders these are
    QString m_settingFolder;
    QString m_updateFolder;
    QString m_zoneCode;
    int m_zoneBias = 0;
    // The drives being read, and what has come of them; empty once one was picked.
    QStringList m_asked;
    std::vector<std::optional<CardContents>> m_contents;
    // Runs while a slow card is being written.
    QEventLoop* m_waiting = nullptr;
    bool m_gaveUp = false;

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
    BackgroundJobs m_reader;
    BackgroundJobs m_writer;
    QTimer m_deadline;
    FlHlp m_helper;
};

} // namespace ql240
