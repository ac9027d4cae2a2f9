#include "settings/config_window.h"

#include <QApplication>
#include <QComboBox>
#include <QKeyEvent>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>
#include <QPixmapCache>
#include <QWindow>
#include <algorithm>
#include <utility>

#include "platform/host.h"
#include "settings/config_layout.h"
#include "settings/dialog_parts.h"
#include "settings/flat_fields.h"
#include "settings/window_gmt.h"
#include "settings/window_pages.h"
#include "widgets/fonts.h"
#include "widgets/skin.h"

namespace ql240 {
namespace {

struct ShockPreset {
    int preset;
    int driving;
    int parked;
};
constexpr std::array kShockPresets = {ShockPreset{1, 6, 5}, ShockPreset{2, 8, 7}, ShockPreset{3, 10, 9}};

} // namespace

ConfigWindow::ConfigWindow(QWidget* parent)
    : QDialog(parent, Qt::FramelessWindowHint), m_card(host().drives) {
    // The drives are listed while the widgets are being created.
    m_card.look();
    // Before any children exist: changing the window flags polishes every child again.
    m_helper.watchWindow(this);
    // With the helper's flags alone, a dialog with a parent would become an embedded child widget.
    if (parentWidget())
        setWindowFlags(windowFlags() | Qt::Dialog);
    m_helper.setResizable(false);
    m_helper.setMovable(true);
    setFixedSize(config::kSize);
    setFont(uiFont(10));
    useDialogColours(this);
    setAutoFillBackground(true);
    m_dstMark = skinPixmap(skinPath(QStringLiteral("dst_check")));
    m_marks = {skinPixmap(skinPath(QStringLiteral("check"))),
               skinPixmap(skinPath(QStringLiteral("discheck2"))),
               skinPixmap(skinPath(QStringLiteral("check1")))};

    m_title = addTitle(this, config::kTitle, QString());
    setTitle(m_title, uiText(UiText::Setting), config::kTitleRoom);
    addTopLists();
    addClock();
    addPageButtons();
    addOtherButtons();
    addLanguageList();
    m_rows = addChoiceRows(this, *this, config::kRows);
    nameForScreenReaders();
    setTabOrderByPlace(this);
    m_rows.first()->setFocus();

    connect(m_drives, &QComboBox::currentIndexChanged, this, &ConfigWindow::loadData);
    // Choosing the entry in view also picks it, so that it is no longer only provisional.
    connect(m_drives, &QComboBox::activated, this, [this](int index) {
        if (m_card.standsIn())
            loadData(index);
    });
    connect(&m_card, &DialogCard::listed, this, &ConfigWindow::fillDrives);
    connect(&m_card, &DialogCard::loaded, this, &ConfigWindow::showContents);
    connect(&m_card, &DialogCard::phaseChanged, this, &ConfigWindow::refresh);
    m_card.waitBriefly();
    setWindowTitle(tr("QL240 Setting"));
    setViewerSpeedUnit(storedSpeedUnit());
}

void ConfigWindow::setViewerSpeedUnit(SpeedUnit unit) {
    m_values.viewerSpeedUnit = static_cast<int>(unit);
    refresh();
}

// --- Values ---

bool ConfigWindow::isOperable(const OptionRow& row) const {
    const bool onCard = row.value != &RowValues::viewerSpeedUnit;
    return onCard ? m_card.isEditable() : !m_card.isAwaited();
}

void ConfigWindow::choose(const OptionRow& row, int value) {
    if (row.value == &RowValues::partitionvalue)
        pickPartition(value);
    else
        m_values.*row.value = value;
    if (row.value == &RowValues::sensitivityvalue)
        applyShockPreset();
    refresh();
}

void ConfigWindow::pickPartition(int value) {
    if (value == m_values.partitionvalue)
        return;
    WindowBtn7 warning(this);
    warning.exec();
    if (warning.isConfirmed())
        m_values.partitionvalue = value;
}

void ConfigWindow::applyShockPreset() {
    for (const ShockPreset& each : kShockPresets) {
        if (each.preset == m_values.sensitivityvalue) {
            m_values.sensitivityvalue1 = each.driving;
            m_values.sensitivityvalue2 = each.parked;
        }
    }
}

void ConfigWindow::deriveShockPreset() {
    m_values.sensitivityvalue = 0;
    for (const ShockPreset& each : kShockPresets) {
        if (each.driving == m_values.sensitivityvalue1 && each.parked == m_values.sensitivityvalue2)
            m_values.sensitivityvalue = each.preset;
    }
}

void ConfigWindow::refresh() {
    // Disabling a widget moves its focus on, in the end to Cancel, so that a second press of the same key
    // would cancel the dialog.
    if (QWidget* focused = focusWidget(); focused && isLocked(focused)) {
        m_lostFocus = focused;
        focused->clearFocus();
    }
    lockWidgets();
    for (ChoiceRow* row : std::as_const(m_rows))
        row->refresh();
    if (m_lostFocus && !focusWidget() && !isLocked(m_lostFocus))
        std::exchange(m_lostFocus, nullptr)->setFocus();
    update();
}

bool ConfigWindow::isLocked(const QWidget* widget) const {
    if (m_card.isAwaited())
        return widget != m_cancel && widget != m_close;
    const auto* row = qobject_cast<const ChoiceRow*>(widget);
    const bool opensPage =
        std::find(m_pageButtons.begin(), m_pageButtons.end(), widget) != m_pageButtons.end();
    return (row && !isOperable(row->row())) || (opensPage && !m_card.isEditable());
}

void ConfigWindow::lockWidgets() {
    const bool awaited = m_card.isAwaited();
    for (QWidget* widget : std::initializer_list<QWidget*>{m_drives, m_firmware, m_micom, m_languages, m_ok})
        widget->setEnabled(!awaited);
    lockPageButtons();
    applySetClock();
    if (awaited)
        setCursor(Qt::BusyCursor);
    else if (testAttribute(Qt::WA_SetCursor))
        unsetCursor();
}

// A car has one battery system, and each has its own page.
void ConfigWindow::lockPageButtons() {
    for (std::size_t i = 0; i < m_pageButtons.size(); ++i) {
        const bool otherCar = (i == 4 && m_battery == u"24V") || (i == 5 && m_battery == u"12V");
        m_pageButtons[i]->setEnabled(m_card.isEditable() && !otherCar);
    }
}

// --- Events ---

// The background with its texts, cached: shaping the texts takes most of a repaint's time, and they change
// only with the language.
QPixmap ConfigWindow::page() const {
    const qreal ratio = devicePixelRatioF();
    const QString key = QStringLiteral("settings page|%1|%2").arg(currentLanguage()).arg(ratio);
    QPixmap page;
    if (QPixmapCache::find(key, &page))
        return page;
    page = QPixmap(config::kSize * ratio);
    page.setDevicePixelRatio(ratio);
    page.fill(palette().color(backgroundRole()));
    QPainter painter(&page);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawPixmap(QRect(QPoint(), config::kSize),
                       readSkinPixmap(skinPath(QStringLiteral("setting_bg"))));
    painter.setFont(font());
    painter.setPen(kPageText);
    paintLabels(painter, config::kLabels);
    for (const OptionRow& row : config::kRows)
        paintRowTexts(painter, row);
    painter.end();
    QPixmapCache::insert(key, page);
    return page;
}

void ConfigWindow::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawPixmap(0, 0, page());
    for (const OptionRow& row : config::kRows)
        paintRowMarks(painter, row, m_values, m_marks, isOperable(row));
    painter.drawPixmap(config::kDstMark, m_dstMark);
}

void ConfigWindow::mouseReleaseEvent(QMouseEvent* event) {
    const QPoint point = event->position().toPoint();
    for (const OptionRow& row : config::kRows) {
        const Choice* hit =
            row.kind != RowKind::ShownOnly && isOperable(row) ? choiceAt(row, point) : nullptr;
        if (!hit)
            continue;
        if (row.kind == RowKind::TickBox) {
            choose(row, m_values.setsClock ? 0 : 1);
            return;
        }
        choose(row, hit->value);
    }
}

void ConfigWindow::keyPressEvent(QKeyEvent* event) {
    if (!isEnter(event))
        QDialog::keyPressEvent(event);
    else if (!clickFocusedButton(this))
        OnSlotsOK();
}

// Without a parent the dialog could go behind the window that opened it, which is blocked by it. Window
// managers keep dialogs above their window only if the transient parent is set.
void ConfigWindow::showEvent(QShowEvent* event) {
    const QWidget* opener = QApplication::activeWindow();
    if (isModal() && !parentWidget() && opener && opener != this) {
        windowHandle()->setFlags(windowHandle()->flags() | Qt::Dialog);
        windowHandle()->setTransientParent(opener->windowHandle());
    }
    QDialog::showEvent(event);
}

// Restores the busy cursor, which is reset when the pointer leaves the window.
void ConfigWindow::enterEvent(QEnterEvent* event) {
    lockWidgets();
    QDialog::enterEvent(event);
}

void ConfigWindow::changeEvent(QEvent* event) {
    if (event->type() == QEvent::LanguageChange)
        event->accept();
    else
        QDialog::changeEvent(event);
}

// --- Commands ---

void ConfigWindow::OnSlotsOK() {
    if (!m_card.isAwaited() && apply())
        accept();
}

void ConfigWindow::OnSlotsCancel() {
    reject();
}

void ConfigWindow::OnSlotsExit() {
    reject();
}

void ConfigWindow::reject() {
    m_card.leave();
    QDialog::reject();
}

void ConfigWindow::OnSlotsGetTime() {
    m_clock->setDateTime(QDateTime::currentDateTime());
}

void ConfigWindow::OnSlotsGmt() {
    WindowGMT window(this);
    window.preselect(m_zoneCode, QString());
    window.exec();
    if (!window.isConfirmed())
        return;
    m_zoneCode = window.selectedCode();
    m_zoneBias = window.selectedBias();
}

bool ConfigWindow::runPage(SettingsPage&& page) {
    if (!m_card.isEditable())
        return false;
    page.setValues(m_values);
    page.exec();
    if (page.isConfirmed())
        page.handBack(m_values);
    refresh();
    return page.isConfirmed();
}

void ConfigWindow::OnSlotsBtn0() {
    runPage(WindowBtn0(this));
}

void ConfigWindow::OnSlotsBtn1() {
    runPage(WindowBtn1(this));
}

void ConfigWindow::OnSlotsBtn2() {
    applyShockPreset();
    if (runPage(WindowBtn2(this)))
        deriveShockPreset();
    refresh();
}

void ConfigWindow::OnSlotsBtn3() {
    if (runPage(WindowBtn3(this)) && m_values.timeoffvalue == 0)
        m_values.timeoffvalue = 1;
}

void ConfigWindow::OnSlotsBtn4() {
    runPage(WindowBtn4(this));
}

void ConfigWindow::OnSlotsBtn5() {
    runPage(WindowBtn5(this));
}

void ConfigWindow::OnSlotsBtn6() {
    runPage(WindowBtn6(this));
}

} // namespace ql240
