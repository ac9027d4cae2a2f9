// Selects a time zone, by a whole hour's bar or from the list of named zones. Interface thread only.
#pragma once

#include <array>

#include "settings/confirmed_dialog.h"

class QComboBox;

namespace ql240 {

class IconToolButtonA;

class WindowGMT : public ConfirmedDialog {
    Q_OBJECT
public:
    explicit WindowGMT(QWidget* parent);

    // Selects the zone with that code and marks its bar; an unknown code leaves the selection unchanged. Does
    // nothing if both texts are empty.
    void preselect(const QString& code, const QString& other);
    QString selectedCode() const;
    int selectedBias() const;

public Q_SLOTS:
    void OnSlotsButton();
    void OnSlotsGMT(QString name);

private:
    void addBars();
    void addZoneList();
    // The marked bar is the disabled one.
    void markBar(int bar);
    void markBarOfZone();
    void selectBar(int bar);

    std::array<IconToolButtonA*, 25> m_bars = {};
    QComboBox* m_zones = nullptr;
};

} // namespace ql240
