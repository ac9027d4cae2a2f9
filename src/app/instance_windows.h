// Announces every top-level window of this process that is shown under one of the instance titles, and brings
// it to the front when another process asks it to take the focus. Construct after the application object.
// Interface thread only.
#pragma once

#include <QHash>
#include <QObject>
#include <QStringList>
#include <memory>

class QWidget;

namespace ql240 {

class LocalRunningWindows;
class WindowServer;

class InstanceWindows : public QObject {
    Q_OBJECT
public:
    InstanceWindows(const LocalRunningWindows& windows, const QStringList& titles);

    bool eventFilter(QObject* object, QEvent* event) override;

private:
    void announce(QWidget* window);

    const LocalRunningWindows& m_windows;
    QStringList m_titles;
    QHash<QObject*, std::shared_ptr<WindowServer>> m_announced;
};

} // namespace ql240
