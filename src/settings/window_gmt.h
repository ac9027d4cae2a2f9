// Choice of a time zone, by the bar of a whole hour or from the list of named zones. Interface thread only.
#pragma once

#include <QDialog>
#include <QPixmap>
#include <array>

class QComboBox;

namespace ql240 {

class IconToolButtonA;

class WindowGMT : public QDialog {
    Q_OBJECT
public:
    explicit WindowGMT(QWidget* parent);

    bool isConfirmed() const { return m_confirmed; }
    // Makes the zone of that code current and marks its bar; an unknown code leaves the zone as it is.
    // Nothing happens if both texts are empty.
    void preselect(const QString& code, const QString& other);
    QString selectedCode() const;
    int selectedBias() const;

public Q_SLOTS:
    void OnSlotsOK();
    void OnSlotsCancel();
    void OnSlotsApply();
    void OnSlotsButton();
    void OnSlotsGMT(QString name);

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    void addButtons();
    void addBars();
    void addZoneList();
    // The marked bar is the disabled one.
    void markBar(int bar);
    void markBarOfZone();
    void selectBar(int bar);

    QPixmap m_background;
    std::array<IconToolButtonA*, 25> m_bars = {};
    QComboBox* m_zones = nullptr;
    bool m_confirmed = false;
};

} // namespace ql240
