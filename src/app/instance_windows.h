// Announces every top-level window of this process that is shown under one of the instance titles, and brings
// it to the front when another process hands its focus over. Interface thread only; made after the
// application object.
#pragma once

#include <QHash>
#include <QObject>
#include <QStringList>
#include <memory>

class QWidget;

namespace ql240 {

class InstanceWindows : public QObject {
    Q_OBJECT
public:
    explicit InstanceWindows(const QStringList& titles);

    bool eventFilter(QObject* object, QEvent* event) override;

private:
    void announce(QWidget* window);

    QStringList m_titles;
    QHash<QObject*, std::shared_ptr<void>> m_announced;
};

} // namespace ql240
