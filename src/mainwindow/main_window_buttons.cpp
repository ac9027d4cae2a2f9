#include "mainwindow/main_window_buttons.h"

#include "base/language.h"
#include "widgets/image_buttons.h"
#include "widgets/skin.h"

namespace ql240 {

using layout::ButtonId;

namespace {

ImagePaths imagesOf(const layout::ButtonRow& row) {
    const QString stem = QLatin1String(row.images);
    if (row.id != ButtonId::Logo)
        return controlImages(stem);
    const QString logo = skinPath(stem);
    return {logo, logo, logo, logo};
}

} // namespace

void MainWindowButtons::make(QWidget* window) {
    for (const layout::ButtonRow& row : layout::kButtons) {
        QAbstractButton*& made = m_buttons[static_cast<std::size_t>(row.id)];
        if (row.id == ButtonId::Logo)
            made = new IconButton(window, imagesOf(row), row.place.size());
        else
            made = new ClearButton(window, imagesOf(row));
        made->setAccessibleName(tr(row.name));
        made->setGeometry(row.place);
    }
    controlAt(ButtonId::Volume)->setLatched(false); // a toggle, like pan
    retranslateButtons();
}

void MainWindowButtons::retranslateButtons() {
    for (const layout::ButtonRow& row : layout::kButtons) {
        if (row.hoverText)
            controlAt(row.id)->setHoverText(uiText(*row.hoverText));
    }
}

void MainWindowButtons::replace(ButtonId old, ButtonId next) {
    at(next)->show();
    if (at(old)->window()->focusWidget() == at(old))
        at(next)->setFocus();
    at(old)->hide();
}

ClearButton* MainWindowButtons::controlAt(ButtonId id) const {
    return static_cast<ClearButton*>(at(id));
}

} // namespace ql240
