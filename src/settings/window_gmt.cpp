#include "settings/window_gmt.h"

#include <QKeyEvent>
#include <QLabel>
#include <QPainter>

#include "base/language.h"
#include "settings/choice_row.h"
#include "settings/dialog_parts.h"
#include "settings/flat_fields.h"
#include "settings/option_rows.h"
#include "settings/time_zones.h"
#include "widgets/fonts.h"
#include "widgets/skin.h"

namespace ql240 {
namespace {

constexpr QSize kSize(633, 361);
constexpr int kBarTop = 30;
constexpr int kBarHeight = 299;
constexpr int kLabelGap = 4;  // between the texts of neighbouring bars
constexpr int kFirstBar = 21; // +9, the camera's home

} // namespace

WindowGMT::WindowGMT(QWidget* parent)
    : QDialog(parent, Qt::FramelessWindowHint), m_background(skinPixmap(skinPath(QStringLiteral("gmt_bg")))) {
    setFont(uiFont(9));
    useDialogColours(this);
    setAutoFillBackground(true);
    setFixedSize(kSize);
    centreOverParent(this);
    addTitle(this, {60, 5, 250, 24}, QStringLiteral("GMT Seting"));
    addButtons();
    addBars();
    addZoneList();
    selectBar(kFirstBar);
    setTabOrderByPlace(this);
    m_zones->setFocus();
}

void WindowGMT::addButtons() {
    ImageButton* ok = addTextButton(this, "OK", {415, 329, 61, 28}, uiText(23));
    connect(ok, &QToolButton::clicked, this, &WindowGMT::OnSlotsOK);
    ImageButton* cancel = addTextButton(this, "cancel", {480, 329, 61, 28}, uiText(24));
    connect(cancel, &QToolButton::clicked, this, &WindowGMT::OnSlotsCancel);
    ImageButton* apply = addTextButton(this, "apply", {545, 329, 61, 28}, uiText(25));
    connect(apply, &QToolButton::clicked, this, &WindowGMT::OnSlotsApply);
    ImageButton* close = addCloseButton(this, {597, 8, 21, 19});
    connect(close, &QToolButton::clicked, this, &WindowGMT::OnSlotsCancel);
}

void WindowGMT::addBars() {
    QFont font = uiFont(9); // the same for all bars: as small as the narrowest needs it
    for (const HourBar& bar : kHourBars)
        font = fittingFont(font, QLatin1String(bar.text), bar.width - kLabelGap);
    for (size_t k = 0; k < kHourBars.size(); ++k) {
        const HourBar& bar = kHourBars[k];
        m_bars[k] = new IconToolButtonA(this, QLatin1String(bar.text));
        m_bars[k]->setFont(font);
        m_bars[k]->setObjectName(QString::number(k));
        m_bars[k]->setGeometry(bar.x, kBarTop, bar.width, kBarHeight);
        connect(m_bars[k], &QToolButton::clicked, this, &WindowGMT::OnSlotsButton);
    }
}

void WindowGMT::addZoneList() {
    m_zones = new FlatList(this, {29, 336, 373, 16}, 10);
    m_zones->setAccessibleName(uiText(12));
    setAccessibleName(uiText(12)); // the window has no title
    for (const TimeZone& zone : kTimeZones)
        m_zones->addItem(QLatin1String(zone.name), QLatin1String(zone.code));
    connect(m_zones, &QComboBox::textActivated, this, &WindowGMT::OnSlotsGMT);
}

void WindowGMT::preselect(const QString& code, const QString& other) {
    if (code.isEmpty() && other.isEmpty())
        return;
    if (const int index = m_zones->findData(code); index >= 0)
        m_zones->setCurrentIndex(index);
    markBarOfZone();
}

QString WindowGMT::selectedCode() const {
    return m_zones->currentData().toString();
}

int WindowGMT::selectedBias() const {
    const QString code = selectedCode();
    for (const TimeZone& zone : kTimeZones) {
        if (code == QLatin1String(zone.code))
            return zone.biasMinutes;
    }
    return 0;
}

void WindowGMT::OnSlotsOK() {
    m_confirmed = true;
    accept();
}

void WindowGMT::OnSlotsCancel() {
    m_confirmed = false;
    reject();
}

void WindowGMT::OnSlotsApply() {
    m_confirmed = true;
}

void WindowGMT::OnSlotsButton() {
    selectBar(sender()->objectName().toInt());
}

void WindowGMT::OnSlotsGMT(QString) {
    markBarOfZone();
}

void WindowGMT::markBar(int bar) {
    for (size_t k = 0; k < m_bars.size(); ++k)
        m_bars[k]->setEnabled(int(k) != bar);
}

void WindowGMT::markBarOfZone() {
    markBar(barOfRow(m_zones->currentIndex() + 1));
}

void WindowGMT::selectBar(int bar) {
    const int known = qMin(bar, int(kHourBars.size()) - 1);
    // A disabled button can't keep the keyboard.
    if (m_bars[size_t(known)]->hasFocus())
        m_zones->setFocus();
    markBar(known);
    m_zones->setCurrentIndex(kHourBars[size_t(known)].firstRow - 1);
}

void WindowGMT::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawPixmap(rect(), m_background);
}

void WindowGMT::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape)
        OnSlotsCancel();
    else if (!isEnter(event))
        QDialog::keyPressEvent(event);
    else if (!clickFocusedButton(this))
        OnSlotsOK();
}

void WindowGMT::closeEvent(QCloseEvent* event) {
    m_confirmed = false;
    QDialog::closeEvent(event);
}

} // namespace ql240
