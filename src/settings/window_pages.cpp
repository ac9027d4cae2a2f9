#include "settings/window_pages.h"

#include <QLabel>

namespace ql240 {

WindowBtn7::WindowBtn7(QWidget* parent) : SettingsPage(parent, pages::kPages[7]) {
    auto* notice =
        new QLabel(QStringLiteral("메모리 파티션 타입 변경 후 SD 메모리 카드를 블랙박스에 삽입하여\n"
                                  "전원을 연결하면 포맷이 자동 진행 됩니다. "),
                   this);
    notice->setGeometry(pages::kNotice);
    notice->setStyleSheet(
        QStringLiteral("color: rgb(0,0,0); font-family: \"Segoe UI\", Arial; font-size: 11pt;"
                       "qproperty-alignment: AlignCenter; "));
    auto* caution =
        new QLabel(QStringLiteral("-주  의-\n포맷시 블랙박스에 저장 된 모든 데이터가 삭제 됩니다. "), this);
    caution->setGeometry(pages::kCaution);
    caution->setStyleSheet(
        QStringLiteral("color: rgb(220,220,220); font-family: \"Segoe UI\", Arial; font-size: 11pt;"));
}

} // namespace ql240
