// Joins the Incident window to the main window: opens clips at moments, takes pictures and times for the
// range, shows the second camera and the marks on the strip. Owned by the main window, which creates it when
// the Incident window is first opened. Interface thread only.
#pragma once

#include <QTimer>

#include "incident/incident.h"
#include "playback/still_decoder.h"

namespace ql240 {

class ClipFolder;
class ClipSession;
class IncidentPanel;
class MainWindow;
class MyListWidget;
enum class CommandId;
class SkinWindow;
class StripMarks;
class VideoView;
class WidgetProgressA;

class IncidentDesk : public QObject {
    Q_OBJECT
public:
    // What the desk uses of the main window; all of it outlives the desk.
    struct Parts {
        MainWindow& window;
        const ClipSession& session;
        WidgetProgressA& panel;
        MyListWidget& list;
        VideoView& mainView;
        VideoView& subView;
    };

    explicit IncidentDesk(const Parts& parts);
    ~IncidentDesk() override;

    void setFolder(const ClipFolder* folder); // null when it is closed
    void run(CommandId command);
    void close();
    bool isOpen() const;

    // Passes the window's command keys on to the main window.
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    QString clipPath() const; // of the open clip; empty while none is open
    void open();
    void leave();
    void markPicture();
    void setEnd(Incident::End end);
    void chooseNext(int step);
    void showClip();
    void showSecondCamera();
    void showMarks();
    void showRange();
    void fetchPictures();

    Parts m_parts;
    Incident m_incident;
    IncidentPanel* m_panel; // the window's contents
    SkinWindow* m_window;
    StripMarks* m_marks;
    StillDecoder m_stills;
    QTimer m_stillsDelay; // the clip chosen opens first
};

} // namespace ql240
