#include "settings/config_window.h"

#include <QComboBox>
#include <QEventLoop>
#include <QFile>
#include <QFileDialog>
#include <QKeyEvent>
#include <QLabel>
#include <QMessageBox>
#include <QMouseEvent>
#include <QPainter>
#include <QPixmapCache>

#include "base/preferences.h"
#include "settings/card.h"
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

ConfigWindow::ConfigWindow(QWidget* parent) : QDialog(parent, Qt::FramelessWindowHint) {
    // The drives are asked while the widgets are made.
    m_deadline.setSingleShot(true);
    connect(&m_deadline, &QTimer::timeout, this, &ConfigWindow::pickCard);
    readDrives();
    // Before anything else: new window flags make every child take on its style again.
    m_helper.watchWindow(this);
    // The helper's flags alone would make a dialog with a parent a part of it.
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
    setTitle(m_title, uiText(0), config::kTitleRoom);
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
    m_reader.wait(kPatience);
    setWindowTitle(tr("QL240 Setting"));
    QString unit;
    m_values.viewerSpeedUnit = readSpeedUnit(unit) && unit != QLatin1String("km") ? 2 : 1;

    applySetClock();
    refresh();
}

void ConfigWindow::setViewerSpeedUnit(qint32 unit) {
    m_values.viewerSpeedUnit = unit;
    refresh();
}

// --- Values ---

// While a drive is being read, or can't be, nothing that would be saved to it can be changed.
bool ConfigWindow::isOperable(const OptionRow& row) const {
    if (m_waiting)
        return false;
    const bool onCard = row.value != &RowValues::viewerSpeedUnit;
    return !onCard || m_drives->count() == 0 || !m_settingFolder.isEmpty();
}

void ConfigWindow::choose(const OptionRow& row, int value) {
    if (row.value == &RowValues::partitionvalue)
        pickPartition(value);
    else
        m_values.*row.value = value;
    if (row.value == &RowValues::sensitivityvalue)
        applyShockPreset();
    if (row.value == &RowValues::setsClock)
        applySetClock();
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
    for (ChoiceRow* row : std::as_const(m_rows))
        row->refresh();
    update();
}

// --- Events ---

// The background with its texts. Shaping the texts takes most of a repaint's time, and they change with the
// language only.
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

void ConfigWindow::changeEvent(QEvent* event) {
    if (event->type() == QEvent::LanguageChange)
        event->accept();
    else
        QDialog::changeEvent(event);
}

// --- Commands ---

void ConfigWindow::OnSlotsOK() {
    if (m_waiting)
        return;
    Onapply();
    if (!m_gaveUp)
        accept();
}

void ConfigWindow::OnSlotsCancel() {
    reject();
}

void ConfigWindow::OnSlotsExit() {
    reject();
}

void ConfigWindow::reject() {
    if (m_waiting) {
        m_gaveUp = true;
        m_waiting->quit();
    }
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

void ConfigWindow::OnSlotsEditor() {
    const QString card = findCardDrive();
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
        QFile::copy(file, card + QStringLiteral("/IMAGE/screensaver.bin"));
}

void ConfigWindow::runPage(SettingsPage& page) {
    page.setValues(m_values);
    page.exec();
    if (page.isConfirmed())
        m_values = page.values();
    refresh();
}

void ConfigWindow::OnSlotsBtn0() {
    WindowBtn0 page(this);
    runPage(page);
}

void ConfigWindow::OnSlotsBtn1() {
    WindowBtn1 page(this);
    runPage(page);
}

void ConfigWindow::OnSlotsBtn2() {
    applyShockPreset();
    WindowBtn2 page(this);
    runPage(page);
    deriveShockPreset();
    refresh();
}

void ConfigWindow::OnSlotsBtn3() {
    WindowBtn3 page(this);
    runPage(page);
    if (m_values.timeoffvalue == 0)
        m_values.timeoffvalue = 1;
}

void ConfigWindow::OnSlotsBtn4() {
    WindowBtn4 page(this);
    runPage(page);
}

void ConfigWindow::OnSlotsBtn5() {
    WindowBtn5 page(this);
    runPage(page);
}

void ConfigWindow::OnSlotsBtn6() {
    WindowBtn6 page(this);
    runPage(page);
}

} // namespace ql240
