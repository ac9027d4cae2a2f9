#include "settings/window_pages.h"

#include <QLabel>

#include "settings/dialog_parts.h"
#include "settings/spoken_texts.h"

namespace ql240 {

WindowBtn7::WindowBtn7(QWidget* parent) : SettingsPage(parent, pages::kPages[7]) {
    QLabel* notice =
        addLabel(this, pages::kNotice,
                 QStringLiteral("메모리 파티션 타입 변경 후 SD 메모리 카드를 블랙박스에 삽입하여\n"
                                "전원을 연결하면 포맷이 자동 진행 됩니다. "),
                 Qt::black, 11);
    notice->setAlignment(Qt::AlignCenter);
    speak(notice, notice->text());
    QLabel* caution = addLabel(
        this, pages::kCaution,
        QStringLiteral("-주  의-\n포맷시 블랙박스에 저장 된 모든 데이터가 삭제 됩니다. "), kPageText, 11);
    speak(caution, caution->text());
}

} // namespace ql240
