// The settings dialog: the camera's configuration on its card, and the viewer's language and speed unit. Runs
// modally from the main window or as the only window of the program. Interface thread only.
#pragma once

#include <QDialog>

namespace ql240 {

enum class SpeedUnit : qint32 { Kmh = 1, Mph = 2 };

class ConfigWindow : public QDialog {
    Q_OBJECT
public:
    explicit ConfigWindow(QWidget* parent = nullptr);

    // The viewer's own speed unit: set before the dialog runs, read after it was accepted.
    qint32 viewerSpeedUnit() const { return m_viewerSpeedUnit; }
    void setViewerSpeedUnit(qint32 unit) { m_viewerSpeedUnit = unit; }

private:
    qint32 m_viewerSpeedUnit = static_cast<qint32>(SpeedUnit::Kmh);
};

} // namespace ql240
