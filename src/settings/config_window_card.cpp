// What the settings dialog has to do with the card: loading the drives' contents and saving to one of them.
#include <QComboBox>
#include <QDir>
#include <QEventLoop>
#include <QLabel>
#include <QSignalBlocker>

#include "base/preferences.h"
#include "settings/card.h"
#include "settings/config_layout.h"
#include "settings/config_window.h"
#include "settings/device_settings.h"
#include "settings/dialog_parts.h"
#include "settings/flat_fields.h"

namespace ql240 {
namespace {

constexpr std::chrono::seconds kReadLimit(2); // when a drive counts as one that doesn't answer

} // namespace

void ConfigWindow::readDrives() {
    const auto drives = std::make_shared<QList<DriveInfo>>();
    m_deadline.start(kReadLimit);
    m_reader.start([drives] { *drives = listRemovableDrives(); },
                   [this, drives] {
                       const QSignalBlocker quiet(m_drives);
                       QStringList names;
                       for (const DriveInfo& info : std::as_const(*drives)) {
                           const QString label = QString::fromLocal8Bit(info.label);
                           m_drives->addItem(QStringLiteral("%1 (%2)").arg(label, info.drive), info.drive);
                           names.append(info.drive);
                       }
                       readContents(names);
                   });
}

// Each drive has a thread of its own: one that doesn't answer must not hide another.
void ConfigWindow::readContents(const QStringList& drives) {
    m_asked = drives;
    m_contents.assign(size_t(drives.size()), std::nullopt);
    for (int i = 0; i < drives.size(); ++i) {
        const auto contents = std::make_shared<CardContents>();
        m_reader.start([contents, drive = drives[i]] { *contents = readCard(drive); },
                       [this, contents, i] { keepContents(i, *contents); });
    }
}

void ConfigWindow::keepContents(int index, const CardContents& contents) {
    if (m_contents.empty()) {
        // Too late for the choice among the drives, but not for the one that was chosen.
        if (m_settingFolder.isEmpty() && contents.drive == m_drives->currentData().toString())
            showContents(contents);
        return;
    }
    m_contents[size_t(index)] = contents;
    if (std::all_of(m_contents.begin(), m_contents.end(), [](const auto& each) { return each.has_value(); }))
        pickCard();
}

// The last drive with a version file is the card; without one it is the first drive.
void ConfigWindow::pickCard() {
    m_deadline.stop();
    if (m_contents.empty())
        return;
    size_t picked = 0;
    for (size_t i = 0; i < m_contents.size(); ++i) {
        if (m_contents[i] && m_contents[i]->versionText)
            picked = i;
    }
    const auto contents = std::exchange(m_contents, {})[picked];
    {
        const QSignalBlocker quiet(m_drives);
        m_drives->setCurrentIndex(m_drives->findData(m_asked[qsizetype(picked)]));
    }
    if (contents)
        showContents(*contents);
    else
        showNoAnswer();
}

void ConfigWindow::loadData(int index) {
    if (index < 0)
        return;
    m_reader.forget();
    m_settingFolder.clear();
    m_deadline.start(kReadLimit);
    readContents({m_drives->itemData(index).toString()});
    if (!m_reader.wait(kPatience))
        refresh();
}

void ConfigWindow::showContents(const CardContents& contents) {
    m_drive = contents.drive;
    m_settingFolder = contents.settingFolder;
    m_updateFolder = contents.updateFolder;
    m_drives->setToolTip(m_drives->currentText());
    applyVersion(contents.versionText.value_or(QString()));
    static_cast<SettingValues&>(m_values) = contents.values;
    m_values.reversalvalue = 0;
    m_values.sharpnessvalue = 4;
    deriveShockPreset();
    if (m_values.mutevalue == 1)
        m_values.speakervalue = 0;
    refresh();
}

void ConfigWindow::showNoAnswer() {
    m_drives->setToolTip(tr("%1 does not answer.").arg(m_drives->currentText()));
    applyVersion(QString());
    refresh();
}

void ConfigWindow::applyVersion(const QString& versionText) {
    const QStringList fields = versionText.split(u' ');
    m_firmware->clear();
    m_micom->clear();
    if (fields.size() >= 2)
        m_firmware->addItem(fields[1]);
    if (fields.size() >= 3)
        m_micom->addItem(fields[2]);
    const QString battery = fields.value(3);
    m_pageButtons[4]->setEnabled(battery != QLatin1String("24V"));
    m_pageButtons[5]->setEnabled(battery != QLatin1String("12V"));
}

void ConfigWindow::Onapply() {
    m_gaveUp = false;
    if (!saveToCard())
        return;
    applyPreferences();
    retranslate();
}

bool ConfigWindow::saveToCard() {
    if (m_settingFolder.isEmpty())
        return true;
    const QString time = m_clock->dateTime().toString(QStringLiteral("yyyy-MM-dd-hh-mm-ss"));
    m_writer.start(
        [drive = m_drive, folder = m_settingFolder, values = m_values, time] {
            // A card pulled out has taken its mount point along; nothing is to be made in that one's place.
            if (!QDir(drive).exists())
                return;
            DeviceSettings settings(folder);
            static_cast<SettingValues&>(settings) = values;
            settings.reversalvalue = 0;
            settings.sharpnessvalue = 4;
            settings.mutevalue = values.speakervalue == 0 ? 1 : 0;
            settings.setTime(values.setsClock != 0, time);
            settings.save();
        },
        [this] {
            if (m_waiting)
                m_waiting->quit();
        });
    return m_writer.wait(kPatience) || waitForWriter();
}

// Writing goes on until it is done: half a save helps nobody. The user may stop waiting by Cancel or close;
// the card's files are whole at every moment.
bool ConfigWindow::waitForWriter() {
    QEventLoop loop;
    m_waiting = &loop;
    QList<QWidget*> locked;
    const auto widgets = findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly);
    for (QWidget* widget : widgets) {
        if (!widget->isEnabled() || widget == m_cancel || widget == m_close)
            continue;
        widget->setEnabled(false);
        locked.append(widget);
    }
    setCursor(Qt::BusyCursor);
    update();
    loop.exec();
    m_waiting = nullptr;
    unsetCursor();
    for (QWidget* widget : std::as_const(locked))
        widget->setEnabled(true);
    return !m_gaveUp;
}

void ConfigWindow::applyPreferences() {
    constexpr std::array kCodes = {"kr", "en", "ru", "ch", "es"};
    const int index = m_languages->currentIndex();
    const auto code = QString::fromLatin1(index < 0 ? "en" : kCodes[size_t(index)]);
    setCurrentLanguage(code);
    writeLanguage(code);
    writeSpeedUnit(m_values.viewerSpeedUnit == 1 ? QStringLiteral("km") : QStringLiteral("mph"));
}

void ConfigWindow::retranslate() {
    setTitle(m_title, uiText(0), config::kTitleRoom);
    m_ok->setText(uiText(23));
    m_cancel->setText(uiText(24));
    m_getTime->setText(uiText(13));
    for (int i = 0; i < m_languages->count(); ++i)
        m_languages->setItemText(i, uiText(39 + i));
    nameForScreenReaders();
    update();
}

} // namespace ql240
