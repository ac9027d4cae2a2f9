// The settings dialog's widgets, created once.
#include <QLabel>

#include "base/preferences.h"
#include "settings/config_layout.h"
#include "settings/config_window.h"
#include "settings/dialog_parts.h"
#include "settings/flat_fields.h"
#include "settings/spoken_texts.h"
#include "widgets/skin.h"

namespace ql240 {
namespace {

constexpr QColor kFaintText(172, 173, 177);
constexpr QColor kFaintGround(224, 223, 228);

QComboBox* addList(QWidget* window, const QRect& place, int points) {
    auto* list = new FlatList(window, place, points);
    // For screen readers: a list would be named by its current entry, and the text beside it is only painted.
    auto* label = new QLabel(window);
    label->setBuddy(list);
    label->hide();
    return list;
}

QLabel* labelOf(const QComboBox* list) {
    const auto labels = list->parentWidget()->findChildren<QLabel*>(QString(), Qt::FindDirectChildrenOnly);
    const auto found = std::find_if(labels.begin(), labels.end(),
                                    [list](const QLabel* label) { return label->buddy() == list; });
    return *found;
}

ImagePaths withDisabled(ImagePaths images, const QString& name) {
    images[static_cast<std::size_t>(ImageSlot::Disabled)] = skinPath(name);
    return images;
}

} // namespace

void ConfigWindow::addTopLists() {
    m_drives = addList(this, config::kDriveList, 9);
    m_firmware = addList(this, config::kFirmwareList, 9);
    m_micom = addList(this, config::kMicomList, 9);
}

void ConfigWindow::addClock() {
    m_clock = new FlatField(this, config::kClockField, QStringLiteral("yyyy-MM-dd hh:mm:ss"));
    m_clock->setObjectName(QStringLiteral("dateTime"));
    m_clock->setDateTime(QDateTime::currentDateTime());
    m_dst = {new FlatField(this, config::kDstStart, QStringLiteral("MM-dd hh:00")),
             new FlatField(this, config::kDstEnd, QStringLiteral("MM-dd hh:00"))};
    for (FlatField* field : m_dst) {
        field->setColours(kFaintText, Qt::white);
        field->setEnabled(false);
    }
    m_getTime = addTextButton(this, "get_time_", config::kGetTime, uiText(UiText::GetCurrentTime));
    connect(m_getTime, &QToolButton::clicked, this, &ConfigWindow::OnSlotsGetTime);
}

void ConfigWindow::applySetClock() {
    const bool sets = m_values.setsClock != 0;
    m_clock->setColours(sets ? Qt::black : kFaintText, sets ? Qt::white : kFaintGround);
    m_clock->setEnabled(sets && !m_card.isAwaited());
    m_getTime->setEnabled(sets && !m_card.isAwaited());
}

void ConfigWindow::addPageButtons() {
    using Slot = void (ConfigWindow::*)();
    constexpr std::array<Slot, 7> kSlots = {&ConfigWindow::OnSlotsBtn0, &ConfigWindow::OnSlotsBtn1,
                                            &ConfigWindow::OnSlotsBtn2, &ConfigWindow::OnSlotsBtn3,
                                            &ConfigWindow::OnSlotsBtn4, &ConfigWindow::OnSlotsBtn5,
                                            &ConfigWindow::OnSlotsBtn6};
    for (std::size_t i = 0; i < kSlots.size(); ++i) {
        const config::PageButton& each = config::kPageButtons[i];
        m_pageButtons[i] = addTextButton(this, each.images, each.place, QString::fromUtf16(each.text));
        connect(m_pageButtons[i], &QToolButton::clicked, this, kSlots[i]);
    }
}

void ConfigWindow::addOtherButtons() {
    const ImagePaths images =
        withDisabled(controlImages(QStringLiteral("gmt_")), QStringLiteral("dis_saver"));
    m_zone = new IconToolButton(this, images);
    m_zone->setGeometry(config::kZoneButton);
    m_zone->setText(QStringLiteral("GMT"));
    m_zone->setEnabled(false);
    connect(m_zone, &QToolButton::clicked, this, &ConfigWindow::OnSlotsGmt);
    m_screenSaver = new IconToolButton(this, images);
    m_screenSaver->setGeometry(config::kScreenSaver);
    m_screenSaver->setText(uiText(UiText::Editor));
    m_screenSaver->setEnabled(false);
    m_screenSaver->hide();
    connect(m_screenSaver, &QToolButton::clicked, this, &ConfigWindow::OnSlotsEditor);

    m_ok = addTextButton(this, "OK", config::kOk, uiText(UiText::Ok));
    connect(m_ok, &QToolButton::clicked, this, &ConfigWindow::OnSlotsOK);
    m_cancel = addTextButton(this, "cancel", config::kCancel, uiText(UiText::Cancel));
    connect(m_cancel, &QToolButton::clicked, this, &ConfigWindow::OnSlotsCancel);
    m_close = addCloseButton(this, config::kClose);
    connect(m_close, &QToolButton::clicked, this, &ConfigWindow::OnSlotsExit);
}

void ConfigWindow::addLanguageList() {
    m_languages = addList(this, config::kLanguageList, 10);
    for (const InterfaceLanguage& each : kInterfaceLanguages)
        m_languages->addItem(uiText(each.name), QLatin1String(each.code));
    QString code;
    readLanguage(code);
    const int known = m_languages->findData(code);
    m_languages->setCurrentIndex(known >= 0 ? known : m_languages->findData(kUsualLanguage));
}

// Names widgets without a text of their own by the painted text beside them.
void ConfigWindow::nameForScreenReaders() {
    labelOf(m_drives)->setText(spokenText(QStringLiteral("드라이브")));
    labelOf(m_firmware)->setText(spokenText(QStringLiteral("펌웨어")));
    labelOf(m_micom)->setText(spokenText(QStringLiteral("마이콤")));
    labelOf(m_languages)->setText(uiText(UiText::Language));
    m_clock->setAccessibleName(uiText(UiText::TimeSetting));
    for (FlatField* field : m_dst)
        field->setAccessibleName(uiText(UiText::DstSetting));
    m_zone->setAccessibleDescription(uiText(UiText::GmtSetting));
}

} // namespace ql240
