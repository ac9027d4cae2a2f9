// The texts of the settings windows and the tooltips of the main window's buttons, in the order of UiText.
// UTF-8.
#pragma once

#include <array>

namespace ql240 {

struct UiTextRow {
    const char* korean;
    const char* english;
    const char* russian;
};

// clang-format off
inline constexpr auto kUiTexts = std::to_array<UiTextRow>({
    /*  0 */ {"설정", "SETTING", "Параметр"},
    /*  1 */ {"영상/음성", "Video & Sound", "Видео и звук"},
    /*  2 */ {"시간", "Time", "Время"},
    /*  3 */ {"기능", "Functions", "Функции"},
    /*  4 */ {"뷰어설정 (하기 설정은 뷰어 디스플레이 전용입니다.)", "Viewer (The below items will only affect the viewer display.)", "Средство просмотра (эл-ты ниже влияют только на дисплей просмотра.)"},
    /*  5 */ {"해상도", "Resolution", "Разрешение"},
    /*  6 */ {"화질", "Video Quality", "Качество видео"},
    /*  7 */ {"초당 프레임 수", "Video Frame Rate", "Частота кадров"},
    /*  8 */ {"음성녹음", "Sound Recording", "Запись звука"},
    /*  9 */ {"스피커볼륨", "Sound Volume", "Громкость звука"},
    /* 10 */ {"시간 설정", "Time Setting", "Время"},
    /* 11 */ {"일광절약시간", "DST Setting", "DST"},
    /* 12 */ {"표준 시간대", "GMT Setting", "GMT"},
    /* 13 */ {"현재 시간 가져오기", "Get Current Time", "Получить время"},
    /* 14 */ {"시간 형식", "Time Format", "Формат времени"},
    /* 15 */ {"충격민감도", "Shock Sensitivity", "Вибростойкость"},
    /* 16 */ {"움직임 민감도", "Motion Sensitivity", "движения"},
    /* 17 */ {"주차감시모드", "Parking Watch", "Монитор парковки"},
    /* 18 */ {"이벤트 파일 개수", "Event Files", "Файлы событий"},
    /* 19 */ {"배터리차단전압", "Battery Prevention", "Батарея"},
    /* 20 */ {"속도단위", "Speed Unit", "Ед. изм. скорости"},
    /* 21 */ {"전자액자", "Photo Frame", "Photo Frame"},
    /* 22 */ {"언어", "Language", "Язык"},
    /* 23 */ {"확인", "OK", "OK"},
    /* 24 */ {"취소", "Cancel", "Cancel"},
    /* 25 */ {"적용", "apply", "apply"},
    /* 26 */ {"최저", "Low", "Низкое"},
    /* 27 */ {"보통", "Middle", "Среднее"},
    /* 28 */ {"최고", "High", "Высокое"},
    /* 29 */ {"해지", "Off", "Выкл"},
    /* 30 */ {"설정", "On", "вкл"},
    /* 31 */ {"상시", "Off", "Выкл"},
    /* 32 */ {"충격", "Shock", "Удар"},
    /* 33 */ {"움직임", "Motion", "Движение"},
    /* 34 */ {"0개", "0", "0"},
    /* 35 */ {"10개", "10", "10"},
    /* 36 */ {"20개", "20", "20"},
    /* 37 */ {"40개", "40", "40"},
    /* 38 */ {"불러오기", "Editor", "Editor"},
    /* 39 */ {"한글 (Korean)", "Korean (한글)", "Корейский"},
    /* 40 */ {"영어 (English)", "English (영어)", "Английский"},
    /* 41 */ {"러시아어 (Русский)", "Russian (Русский)", "Русский"},
    /* 42 */ {"중국어()", "Chinese", "Китайский"},
    /* 43 */ {"스페인어 (Spanish)", "Spanish", "Испанский"},
    /* 44 */ {"안함", "Off", "Выкл"},
    /* 45 */ {"무음", "Off", "Выкл"},
    /* 46 */ {"펌웨어버전", "Drive", "Диск"},
    /* 47 */ {"마이콤버전", "Model", "Модель"},
    /* 48 */ {"재생", "Play", "Play"},
    /* 49 */ {"일시정지", "Pause", "Pause"},
    /* 50 */ {"정지", "Stop", "Stop"},
    /* 51 */ {"이전 파일", "Previous File", "Previous File"},
    /* 52 */ {"한 프레임 뒤로", "Rewind 1 Frame", "Rewind 1 Frame"},
    /* 53 */ {"한 프레임 앞으로", "Forward 1 Frame", "Forward 1 Frame"},
    /* 54 */ {"다음 파일", "Next File", "Next File"},
    /* 55 */ {"확대", "Zoom-In", "Zoom-In"},
    /* 56 */ {"축소", "Zoom-Out", "Zoom-Out"},
    /* 57 */ {"이동", "Pan", "Pan"},
    /* 58 */ {"회전", "Rotate", "Rotate"},
    /* 59 */ {"볼륨", "Volume", "Volume"},
    /* 60 */ {"설정", "Setup", "Setup"},
    /* 61 */ {"스크린샷", "Capture", "Capture"},
    /* 62 */ {"프린터", "Printer", "Printer"},
    /* 63 */ {"× 1.0", "× 1.0", "x 1.0"},
});
// clang-format on

} // namespace ql240
