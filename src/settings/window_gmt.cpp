#include "settings/window_gmt.h"

#include <QLabel>
#include <algorithm>

#include "base/language.h"
#include "settings/choice_row.h"
#include "settings/dialog_parts.h"
#include "settings/flat_fields.h"
#include "settings/option_rows.h"
#include "settings/time_zones.h"
#include "widgets/fonts.h"

namespace ql240 {
namespace {

constexpr QSize kSize(633, 361);
constexpr int kBarTop = 30;
constexpr int kBarHeight = 299;
constexpr int kLabelGap = 4;  // between the texts of neighbouring bars
constexpr int kFirstBar = 21; // +9, the camera's home time zone

} // namespace

WindowGMT::WindowGMT(QWidget* parent) : ConfirmedDialog(parent, QStringLiteral("gmt_bg")) {
    setFont(uiFont(9));
    useDialogColours(this);
    setAutoFillBackground(true);
    setFixedSize(kSize);
    centreOverParent(this);
    addTitle(this, {60, 5, 250, 24}, QStringLiteral("GMT Seting"));
    addButtons({415, 329, 61, 28}, {480, 329, 61, 28}, {597, 8, 21, 19});
    ImageButton* apply = addTextButton(this, "apply", {545, 329, 61, 28}, uiText(UiText::Apply));
    connect(apply, &QToolButton::clicked, this, &WindowGMT::OnSlotsApply);
    addBars();
    addZoneList();
    selectBar(kFirstBar);
    setTabOrderByPlace(this);
    m_zones->setFocus();
}

void WindowGMT::addBars() {
    QFont font = uiFont(9); // the same for all bars: the size that the narrowest needs
    for (const HourBar& bar : kHourBars)
        font = fittingFont(font, QLatin1String(bar.text), bar.width - kLabelGap);
    for (std::size_t k = 0; k < kHourBars.size(); ++k) {
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
    m_zones->setAccessibleName(uiText(UiText::GmtSetting));
    setAccessibleName(uiText(UiText::GmtSetting)); // the window has no title
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

void WindowGMT::OnSlotsButton() {
    selectBar(sender()->objectName().toInt());
}

void WindowGMT::OnSlotsGMT(QString) {
    markBarOfZone();
}

void WindowGMT::markBar(int bar) {
    for (std::size_t k = 0; k < m_bars.size(); ++k)
        m_bars[k]->setEnabled(static_cast<int>(k) != bar);
}

void WindowGMT::markBarOfZone() {
    markBar(barOfRow(m_zones->currentIndex() + 1));
}

void WindowGMT::selectBar(int bar) {
    const int known = std::min(bar, static_cast<int>(kHourBars.size()) - 1);
    // A disabled button can't keep the focus.
    if (m_bars[static_cast<std::size_t>(known)]->hasFocus())
        m_zones->setFocus();
    markBar(known);
    m_zones->setCurrentIndex(kHourBars[static_cast<std::size_t>(known)].firstRow - 1);
}

} // namespace ql240
