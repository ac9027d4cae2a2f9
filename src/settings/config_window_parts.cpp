// The settings dialog's widgets, made once.
#include <QComboBox>
#include <QDateTimeEdit>
#include <QLabel>

#include "base/preferences.h"
#include "settings/config_layout.h"
#include "settings/config_window.h"
#include "settings/dialog_parts.h"
#include "widgets/skin.h"

namespace ql240 {
namespace {

// A list's own style, for it and its popup, and what the system's style leaves unpainted beside such a sheet.
QString listStyle(const char* size) {
    return QStringLiteral(
               "* {background-color: #ffffff; color: rgb(0,0,0); font-family: \"Segoe UI\", Arial; "
               "font-size: %1; border: 0px;}"
               " QComboBox {padding-left: 4px;}"
               " QComboBox::drop-down {subcontrol-origin: border; width: 17px; border: 0px;}"
               " QComboBox::down-arrow {image: url(:/gfx_r/2012/combo_down.png); width: 17px;}")
        .arg(QLatin1String(size));
}

const QString kFieldStyle = QStringLiteral(
    "QDateTimeEdit {border: 0px ; font-family: 'Segoe UI', 'Arial'; font-size: 10pt; background-color: "
    "#ffffff;color: rgb(172,173,177);QSpinBox {\t\t\t padding-right: 21px;\t\t\t border-width: 3;\t\t\t "
    "background-image: url(:/gfx_r/2012/time_up1.png);\t\t }\t\t }\t\t QDateTimeEdit:focus {\t\t\tcolor: "
    "black;\t\t }");

// What the field's own style leaves to the system's, which paints nothing there once a style sheet is set.
const QString kFieldButtons = QStringLiteral(
    " QDateTimeEdit::up-button, QDateTimeEdit::down-button {subcontrol-origin: border; width: 21px; height: "
    "9px; "
    "border: 0px;}"
    " QDateTimeEdit::up-button {subcontrol-position: top right; image: url(:/gfx_r/2012/time_up1.png);}"
    " QDateTimeEdit::down-button {subcontrol-position: bottom right; image: "
    "url(:/gfx_r/2012/time_down1.png);}");

QComboBox* addList(QWidget* window, const QRect& place, const char* fontSize) {
    auto* list = new QComboBox(window);
    list->setGeometry(place);
    list->setStyleSheet(listStyle(fontSize));
    // For screen readers: a list's own name is its current entry, and the label beside it is only painted.
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

QDateTimeEdit* addField(QWidget* window, const QRect& place, const QString& format) {
    auto* field = new QDateTimeEdit(window);
    field->setGeometry(place);
    field->setAlignment(Qt::AlignVCenter);
    field->setDisplayFormat(format);
    field->setStyleSheet(kFieldStyle + kFieldButtons);
    return field;
}

ImagePaths withDisabled(ImagePaths images, const QString& name) {
    images[size_t(ImageSlot::Disabled)] = skinPath(name);
    return images;
}

} // namespace

QString clockStyle(bool enabled) {
    const QString colours =
        enabled ? QStringLiteral("background-color: #ffffff;color: rgb(0,0,0);")
                : QStringLiteral("background-color: rgb(224,223,228);color: rgb(172,173,177);");
    return QStringLiteral(
               "QDateTimeEdit {border: 0px ; font-family: 'Segoe UI', 'Arial'; font-size: 10pt; ") +
           colours +
           QStringLiteral(
               "QSpinBox {\t\t\t padding-right: 21px;\t\t\t border-width: 3;\t\t\t background-image: "
               "url(:/gfx_r/2012/time_up1.png);\t\t }\t\t }") +
           kFieldButtons;
}

void ConfigWindow::addTopLists() {
    m_drives = addList(this, config::kDriveList, "9pt");
    m_firmware = addList(this, config::kFirmwareList, "9pt");
    m_micom = addList(this, config::kMicomList, "9pt");
}

void ConfigWindow::addClock() {
    m_clock = addField(this, config::kClockField, QStringLiteral("yyyy-MM-dd hh:mm:ss"));
    m_clock->setObjectName(QStringLiteral("dateTime"));
    m_clock->setDateTime(QDateTime::currentDateTime());
    m_dst = {addField(this, config::kDstStart, QStringLiteral("MM-dd hh:00")),
             addField(this, config::kDstEnd, QStringLiteral("MM-dd hh:00"))};
    for (QDateTimeEdit* field : m_dst)
        field->setEnabled(false);
    m_getTime = addTextButton(this, "get_time_", config::kGetTime, uiText(13));
    connect(m_getTime, &QToolButton::clicked, this, &ConfigWindow::OnSlotsGetTime);
}

void ConfigWindow::addPageButtons() {
    using Slot = void (ConfigWindow::*)();
    constexpr std::array<Slot, 7> kSlots = {&ConfigWindow::OnSlotsBtn0, &ConfigWindow::OnSlotsBtn1,
                                            &ConfigWindow::OnSlotsBtn2, &ConfigWindow::OnSlotsBtn3,
                                            &ConfigWindow::OnSlotsBtn4, &ConfigWindow::OnSlotsBtn5,
                                            &ConfigWindow::OnSlotsBtn6};
    for (size_t i = 0; i < kSlots.size(); ++i) {
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
    m_screenSaver->setText(uiText(38));
    m_screenSaver->setEnabled(false);
    m_screenSaver->hide();
    connect(m_screenSaver, &QToolButton::clicked, this, &ConfigWindow::OnSlotsEditor);

    m_ok = addTextButton(this, "OK", config::kOk, uiText(23));
    connect(m_ok, &QToolButton::clicked, this, &ConfigWindow::OnSlotsOK);
    m_cancel = addTextButton(this, "cancel", config::kCancel, uiText(24));
    connect(m_cancel, &QToolButton::clicked, this, &ConfigWindow::OnSlotsCancel);
    m_close = addCloseButton(this, config::kClose);
    connect(m_close, &QToolButton::clicked, this, &ConfigWindow::OnSlotsExit);
}

void ConfigWindow::addLanguageList() {
    m_languages = addList(this, config::kLanguageList, "10pt");
    for (int id = 39; id <= 43; ++id)
        m_languages->addItem(uiText(id));
    QString code;
    readLanguage(code);
    const QStringList codes = {QStringLiteral("kr"), QStringLiteral("en"), QStringLiteral("ru"),
                               QStringLiteral("ch"), QStringLiteral("es")};
    m_languages->setCurrentIndex(codes.contains(code) ? int(codes.indexOf(code)) : 1);
}

// Widgets without a text of their own are called by the painted text beside them.
void ConfigWindow::nameForScreenReaders() {
    labelOf(m_drives)->setText(QStringLiteral("드라이브"));
    labelOf(m_firmware)->setText(QStringLiteral("펌웨어"));
    labelOf(m_micom)->setText(QStringLiteral("마이콤"));
    labelOf(m_languages)->setText(uiText(22));
    m_clock->setAccessibleName(uiText(10));
    for (QDateTimeEdit* field : m_dst)
        field->setAccessibleName(uiText(11));
    m_zone->setAccessibleDescription(uiText(12));
}

} // namespace ql240
