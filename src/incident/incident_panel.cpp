#include "incident/incident_panel.h"

#include <QFileInfo>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "widgets/plain_text.h"

namespace ql240 {
namespace {

constexpr int kMargin = 8;
constexpr QSize kEndPicture(160, 90);
constexpr QSize kSecondCamera(320, 180);
constexpr double kKmPerMile = 1.609;

enum Column { kTime, kKind, kSpeed, kClip };

constexpr char kStyleSheet[] = R"(
QTreeWidget { border: 1px solid rgb(62,62,59); background-color: rgb(7,7,7); color: #ffffff; }
QTreeWidget::item { height: 22px; }
QHeaderView::section { border: none; border-bottom: 1px solid rgb(62,62,59); padding: 2px 4px;
    background-color: rgb(26,26,25); color: rgb(160,160,160); }
)";

QString timeText(const Moment& moment) {
    const auto ms = moment.cameraMs ? moment.cameraMs : moment.utcMs;
    if (!ms)
        return QStringLiteral("–");
    const QDateTime time = QDateTime::fromMSecsSinceEpoch(*ms, Qt::UTC);
    return time.toString(moment.cameraMs ? QStringLiteral("yyyy-MM-dd HH:mm:ss")
                                         : QStringLiteral("yyyy-MM-dd HH:mm:ss 'UTC'"));
}

QString kindText(const Moment& moment) {
    switch (moment.kind) {
        case Moment::Kind::Event:
            return IncidentPanel::tr("Event");
        case Moment::Kind::Motion:
            return IncidentPanel::tr("Motion");
        case Moment::Kind::Mark:
            return IncidentPanel::tr("Mark");
        case Moment::Kind::Shock:
            break;
    }
    return IncidentPanel::tr("Shock %1 g").arg(moment.sizeG, 0, 'f', 1);
}

// A time on the axis; clips without a time stamp lie before all dates.
QString clockText(std::int64_t ms) {
    if (ms < 0)
        return {};
    return QDateTime::fromMSecsSinceEpoch(ms, Qt::UTC).toString(QStringLiteral("HH:mm:ss.zzz")).chopped(2);
}

} // namespace

IncidentPanel::IncidentPanel(Incident& incident, QWidget* parent) : QWidget(parent), m_incident(incident) {
    setStyleSheet(QString::fromLatin1(kStyleSheet));
    m_moments = new QTreeWidget(this);
    m_moments->setAccessibleName(tr("Moments"));
    m_moments->setHeaderLabels({tr("Time"), tr("Kind"), tr("Speed"), tr("Clip")});
    m_moments->setRootIsDecorated(false);
    m_moments->setUniformRowHeights(true);
    m_moments->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    m_moments->setContextMenuPolicy(Qt::NoContextMenu);
    m_moments->header()->setContextMenuPolicy(Qt::NoContextMenu);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    column->setSpacing(kMargin);
    column->addWidget(makeSearchRow());
    column->addWidget(m_moments, 1);
    column->addWidget(makeRange());
    m_secondCamera = new QLabel(tr("No second camera"), this);
    m_secondCamera->setAccessibleName(tr("Second camera"));
    m_secondCamera->setAlignment(Qt::AlignCenter);
    m_secondCamera->setFixedSize(kSecondCamera);
    m_secondCamera->setStyleSheet(QStringLiteral("background-color: rgb(7,7,7); color: rgb(96,96,96);"));
    column->addWidget(m_secondCamera, 0, Qt::AlignHCenter);
    connect(m_moments, &QTreeWidget::currentItemChanged, this, &IncidentPanel::chooseCurrent);
    connect(m_moments, &QTreeWidget::itemActivated, this, &IncidentPanel::chooseCurrent);
    connect(&m_incident.search(), &MomentSearch::changed, this, &IncidentPanel::showSearch);
    connect(&m_incident, &Incident::rangeChanged, this, &IncidentPanel::showRange);
    connect(&m_incident, &Incident::chosen, this, &IncidentPanel::showMoments);
    showSearch();
    showRange();
}

QWidget* IncidentPanel::makeSearchRow() {
    auto* box = new QWidget(this);
    auto* row = new QHBoxLayout(box);
    row->setContentsMargins(0, 0, 0, 0);
    m_searchText = new QLabel(box);
    m_searchText->setTextFormat(Qt::PlainText);
    m_searchBar = new QProgressBar(box);
    m_searchBar->setTextVisible(false);
    m_searchBar->setFixedHeight(kMargin);
    m_searchBar->setAccessibleName(tr("Search for moments"));
    m_searchButton = new QPushButton(tr("Cancel"), box);
    auto* mark = new QPushButton(tr("Mark"), box);
    mark->setToolTip(tr("Marks the picture shown, or removes its mark (Ctrl+M)"));
    row->addWidget(m_searchText);
    row->addWidget(m_searchBar, 1);
    row->addWidget(m_searchButton);
    row->addWidget(mark);
    connect(m_searchButton, &QPushButton::clicked, this, [this] {
        MomentSearch& search = m_incident.search();
        search.phase() == MomentSearch::Phase::Searching ? search.cancel() : search.start();
    });
    connect(mark, &QPushButton::clicked, this, &IncidentPanel::markWanted);
    return box;
}

QWidget* IncidentPanel::makeRange() {
    auto* box = new QWidget(this);
    auto* row = new QHBoxLayout(box);
    row->setContentsMargins(0, 0, 0, 0);
    m_ends = {makeEnd(Incident::End::From, box), makeEnd(Incident::End::To, box)};
    m_clear = new QPushButton(tr("Clear"), box);
    m_clear->setToolTip(tr("Clears the range"));
    m_rangeText = new QLabel(box);
    m_rangeText->setTextFormat(Qt::PlainText);
    m_rangeText->setAlignment(Qt::AlignCenter);
    auto* middle = new QVBoxLayout;
    middle->addStretch();
    middle->addWidget(m_rangeText);
    middle->addWidget(m_clear);
    middle->addStretch();
    for (std::size_t i = 0; i < m_ends.size(); ++i) {
        auto* end = new QVBoxLayout;
        end->addWidget(m_ends[i].picture);
        end->addWidget(m_ends[i].time);
        end->addWidget(m_ends[i].set);
        row->addLayout(end);
        if (i == 0)
            row->addLayout(middle, 1);
    }
    connect(m_clear, &QPushButton::clicked, &m_incident, &Incident::clearRange);
    return box;
}

IncidentPanel::EndParts IncidentPanel::makeEnd(Incident::End end, QWidget* parent) {
    const bool isFrom = end == Incident::End::From;
    EndParts parts{new QLabel(parent), new QLabel(parent),
                   new QPushButton(isFrom ? tr("From here") : tr("To here"), parent)};
    parts.picture->setFixedSize(kEndPicture);
    parts.picture->setStyleSheet(QStringLiteral("background-color: rgb(7,7,7);"));
    parts.picture->setAccessibleName(isFrom ? tr("Picture at From") : tr("Picture at To"));
    parts.time->setTextFormat(Qt::PlainText);
    parts.time->setAlignment(Qt::AlignCenter);
    parts.set->setToolTip(isFrom ? tr("The range begins at the picture shown (,)")
                                 : tr("The range ends at the picture shown (.)"));
    connect(parts.set, &QPushButton::clicked, this, [this, end] { Q_EMIT endWanted(end); });
    return parts;
}

void IncidentPanel::showSearch() {
    const MomentSearch& search = m_incident.search();
    const bool isSearching = search.phase() == MomentSearch::Phase::Searching;
    const auto count = static_cast<int>(search.moments().size());
    m_searchText->setText(count == 1 ? tr("1 moment") : tr("%1 moments").arg(count));
    m_searchBar->setMaximum(static_cast<int>(std::max<qsizetype>(1, search.total())));
    m_searchBar->setValue(static_cast<int>(search.searched()));
    m_searchBar->setVisible(isSearching);
    m_searchButton->setText(isSearching ? tr("Cancel") : tr("Search"));
    m_searchButton->setVisible(isSearching || search.phase() == MomentSearch::Phase::Cancelled);
    showMoments();
    showRange();
}

// Rows that are there already are only filled again, so the list doesn't flicker or scroll while it grows.
void IncidentPanel::showMoments() {
    const QScopedValueRollback filling(m_isFilling, true);
    const auto& moments = m_incident.search().moments();
    const auto count = static_cast<int>(moments.size());
    while (m_moments->topLevelItemCount() > count)
        delete m_moments->takeTopLevelItem(count);
    for (int i = 0; i < count; ++i) {
        const Moment& moment = moments[static_cast<std::size_t>(i)];
        if (i >= m_moments->topLevelItemCount())
            m_moments->addTopLevelItem(new QTreeWidgetItem);
        QTreeWidgetItem* item = m_moments->topLevelItem(i);
        item->setText(kTime, timeText(moment));
        item->setText(kKind, kindText(moment));
        item->setText(kSpeed, speedText(moment));
        item->setText(kClip, shownName(QFileInfo(moment.clip).fileName()));
    }
    m_moments->setCurrentItem(m_moments->topLevelItem(m_incident.chosenRow()));
}

QString IncidentPanel::speedText(const Moment& moment) const {
    if (!moment.place || std::isnan(moment.place->speedKmh))
        return QStringLiteral("–");
    const double speed = moment.place->speedKmh / (m_kilometres ? 1.0 : kKmPerMile);
    return (m_kilometres ? tr("%1 km/h") : tr("%1 mph")).arg(static_cast<int>(speed));
}

void IncidentPanel::setKilometres(bool on) {
    m_kilometres = on;
    showMoments();
}

void IncidentPanel::showRange() {
    const TimeRange range = m_incident.search().timeline().clamped(m_incident.range());
    for (const Incident::End end : {Incident::End::From, Incident::End::To}) {
        const EndParts& parts = m_ends[static_cast<std::size_t>(end)];
        const QImage& picture = m_incident.picture(end);
        parts.picture->setPixmap(picture.isNull() ? QPixmap() : QPixmap::fromImage(picture));
        const std::int64_t ms = end == Incident::End::From ? range.fromMs : range.toMs;
        parts.time->setText(range.isEmpty() ? QStringLiteral("–") : clockText(ms));
    }
    m_rangeText->setText(
        range.isEmpty() ? tr("No range")
                        : tr("%1 s").arg(static_cast<double>(range.toMs - range.fromMs) / 1000, 0, 'f', 1));
    m_clear->setEnabled(!range.isEmpty());
}

void IncidentPanel::chooseCurrent() {
    if (!m_isFilling)
        m_incident.choose(m_moments->indexOfTopLevelItem(m_moments->currentItem()));
}

QWidget* IncidentPanel::secondCamera() const {
    return m_secondCamera;
}

void IncidentPanel::setSecondCamera(bool on) {
    m_secondCamera->setText(on ? QString() : tr("No second camera"));
}

} // namespace ql240
