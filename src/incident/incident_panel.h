// The contents of the Incident window: the list of moments with the search's progress, the range with the
// pictures at its ends, the second camera's picture, and the buttons. Shows an Incident and reports what the
// user asks for. Interface thread only; owned by its Qt parent.
#pragma once

#include <QWidget>

#include "incident/incident.h"

class QLabel;
class QProgressBar;
class QPushButton;
class QTreeWidget;

namespace ql240 {

class IncidentPanel : public QWidget {
    Q_OBJECT
public:
    IncidentPanel(Incident& incident, QWidget* parent = nullptr);

    // Where the second camera's picture goes; empty, with a word, unless `on`.
    QWidget* secondCamera() const;
    void setSecondCamera(bool on);
    // Speeds in the list are in this unit.
    void setKilometres(bool on);

    QSize sizeHint() const override { return {460, 614}; } // as high as the main window, with its frame

Q_SIGNALS:
    void endWanted(ql240::Incident::End end);
    void markWanted();

private:
    struct EndParts {
        QLabel* picture;
        QLabel* time;
        QPushButton* set;
    };

    QWidget* makeSearchRow();
    QWidget* makeRange();
    EndParts makeEnd(Incident::End end, QWidget* parent);
    void showSearch();
    void showMoments();
    void showRange();
    void chooseCurrent();
    QString speedText(const Moment& moment) const;

    Incident& m_incident;
    QTreeWidget* m_moments;
    QLabel* m_searchText;
    QProgressBar* m_searchBar;
    QPushButton* m_searchButton;
    std::array<EndParts, 2> m_ends;
    QLabel* m_rangeText;
    QPushButton* m_clear;
    QLabel* m_secondCamera;
    bool m_kilometres = true;
    bool m_isFilling = false; // the list, so its current row isn't the user's choice
};

} // namespace ql240
