// The settings dialog and the card: showing what is on it, and saving to it.
#include <QComboBox>
#include <QFileDialog>
#include <QLabel>
#include <QMessageBox>
#include <QSignalBlocker>

#include "base/preferences.h"
#include "platform/host.h"
#include "platform/waits.h"
#include "settings/card.h"
#include "settings/config_layout.h"
#include "settings/config_window.h"
#include "settings/dialog_parts.h"
#include "settings/flat_fields.h"
#include "widgets/plain_text.h"

namespace ql240 {
namespace {

constexpr int kPlainRole = Qt::UserRole + 1; // an entry's text without direction marks, for tooltips

} // namespace

void ConfigWindow::fillDrives() {
    const QSignalBlocker quiet(m_drives);
    for (const DriveInfo& info : m_card.drives()) {
        const QString label = shownName(QString::fromLocal8Bit(info.label));
        const QString drive = shownText(info.drive);
        const QString entry = QStringLiteral("%1 (%2)");
        m_drives->addItem(entry.arg(isolated(label), isolated(drive)), info.drive);
        m_drives->setItemData(m_drives->count() - 1, entry.arg(label, drive), kPlainRole);
    }
}

void ConfigWindow::loadData(int index) {
    m_card.pick(index);
    showDrive();
}

// The list shows the drive in view; its tooltip names the drives that don't answer.
void ConfigWindow::showDrive() {
    {
        const QSignalBlocker quiet(m_drives);
        m_drives->setCurrentIndex(m_card.current());
    }
    QStringList silent;
    for (const int index : m_card.unanswered())
        silent.append(m_drives->itemData(index, kPlainRole).toString());
    m_drives->setToolTip(m_card.phase() == DialogCard::Phase::NoAnswer
                             ? hoverText(tr("%1 does not answer.").arg(silent.join(QStringLiteral(", "))))
                             : hoverText(m_drives->currentData(kPlainRole).toString()));
}

void ConfigWindow::showContents() {
    showDrive();
    const CardContents* contents = m_card.contents();
    applyVersion(contents ? contents->versionText.value_or(QString()) : QString());
    if (!contents)
        return;
    static_cast<SettingValues&>(m_values) = contents->values;
    m_values.reversalvalue = 0;
    m_values.sharpnessvalue = 4;
    deriveShockPreset();
    if (m_values.mutevalue == 1)
        m_values.speakervalue = 0;
}

void ConfigWindow::applyVersion(const QString& versionText) {
    const QStringList fields = versionText.split(u' ');
    m_firmware->clear();
    m_micom->clear();
    if (fields.size() >= 2)
        m_firmware->addItem(shownName(fields[1]));
    if (fields.size() >= 3)
        m_micom->addItem(shownName(fields[2]));
    m_battery = fields.value(3);
    lockPageButtons();
}

void ConfigWindow::Onapply() {
    apply();
}

bool ConfigWindow::apply() {
    if (!m_card.settle())
        return false;
    const QString time = m_clock->dateTime().toString(QStringLiteral("yyyy-MM-dd-hh-mm-ss"));
    if (!m_card.save(m_values, m_values.setsClock ? std::optional(time) : std::nullopt))
        return false;
    applyPreferences();
    retranslate();
    return true;
}

void ConfigWindow::applyPreferences() {
    const QString chosen = m_languages->currentData().toString();
    const QString code = chosen.isEmpty() ? kUsualLanguage : chosen;
    setCurrentLanguage(code);
    writeLanguage(code);
    storeSpeedUnit(viewerSpeedUnit());
}

void ConfigWindow::retranslate() {
    setTitle(m_title, uiText(UiText::Setting), config::kTitleRoom);
    m_ok->setText(uiText(UiText::Ok));
    m_cancel->setText(uiText(UiText::Cancel));
    m_getTime->setText(uiText(UiText::GetCurrentTime));
    int index = 0;
    for (const InterfaceLanguage& each : kInterfaceLanguages)
        m_languages->setItemText(index++, uiText(each.name));
    nameForScreenReaders();
    update();
}

void ConfigWindow::OnSlotsEditor() {
    const auto card = std::make_shared<QString>();
    m_copies.start([card, drives = host().drives] { *card = findCardDrive(drives); },
                   [this, card] { loadScreenSaver(*card); });
    m_copies.wait(waits::kCardAnswer);
}

void ConfigWindow::loadScreenSaver(const QString& card) {
    if (card.isEmpty()) {
        auto* box = new QMessageBox(QMessageBox::NoIcon, QStringLiteral("QL240 Notification"),
                                    QStringLiteral("No Disk "), QMessageBox::Ok);
        box->setAttribute(Qt::WA_DeleteOnClose);
        box->setModal(false);
        box->show();
        return;
    }
    const QString file = QFileDialog::getOpenFileName(this, QStringLiteral("QL240 Screen Saver, Load File"),
                                                      QString(), QStringLiteral("QL240 Image Files(*.bin)"));
    if (!file.isEmpty())
        m_copies.start([file, card, drives = host().drives] { copyScreenSaver(file, card, drives); }, [] {});
}

} // namespace ql240
