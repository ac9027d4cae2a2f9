// The settings windows by keyboard, with a screen reader, and in every language.
#include <QHelpEvent>
#include <QSignalSpy>
#include <QToolTip>
#include <algorithm>

#include "settings/config_layout.h"
#include "settings/page_layout.h"
#include "settings/window_gmt.h"
#include "settings/window_pages.h"
#include "support/accessible_tree.h"
#include "support/modal.h"
#include "support/settings_fixture.h"
#include "widgets/image_buttons.h"

using namespace ql240;

namespace {

QString nameOf(QObject* object) {
    QAccessibleInterface* interface = QAccessible::queryAccessibleInterface(object);
    return interface ? AccessibleTree::nameOf(interface) : QString();
}

ChoiceRow* rowOf(const QWidget& window, int RowValues::*value) {
    for (auto* row : window.findChildren<ChoiceRow*>()) {
        if (row->row().value == value)
            return row;
    }
    return nullptr;
}

bool isHangul(QChar letter) {
    return letter.script() == QChar::Script_Hangul;
}

void showActive(QWidget& window) {
    window.show();
    QApplication::setActiveWindow(&window);
    QVERIFY(QTest::qWaitForWindowActive(&window));
}

} // namespace

class TestSettingsAccess : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m_fixture.emplace(); }

    void tabOrder() {
        ReadyWindow window;
        showActive(window);
        QStringList names;
        do {
            names.append(nameOf(window.focusWidget()));
            QTest::keyClick(window.focusWidget(), Qt::Key_Tab);
        } while (nameOf(window.focusWidget()) != u"Resolution" && names.size() < 60);
        QCOMPARE(names.join(u'|'),
                 "Resolution|Picture adjustment|Video Quality|Video Frame Rate|Overwriting of recordings|"
                 "Sound Recording|Volume of the voice guidance|"
                 "Time Setting|Shock Sensitivity|Shock sensitivity in detail|Parking Watch|"
                 "Motion Sensitivity|Battery cut-off by timer|Battery cut-off voltage, 12 V|"
                 "Battery cut-off voltage, 24 V|"
                 "Speed Unit|Memory partition type|Security LED|Language|Speed Unit|Cancel|OK|"
                 "Drive|Firmware|Microcontroller|Close");
    }

    void keys() {
        ReadyWindow window;
        ChoiceRow* speaker = rowOf(window, &RowValues::speakervalue);
        for (const auto& [key, value] : {std::pair(Qt::Key_Right, 4),
                                         {Qt::Key_Left, 3},
                                         {Qt::Key_Up, 2},
                                         {Qt::Key_Home, 0},
                                         {Qt::Key_Down, 1},
                                         {Qt::Key_Space, 1},
                                         {Qt::Key_End, 4}}) {
            QTest::keyClick(speaker, key);
            QCOMPARE(window.values().speakervalue, value);
        }
        ChoiceRow* clock = rowOf(window, &RowValues::setsClock);
        for (const auto& [key, value] : {std::pair(Qt::Key_Space, 1),
                                         {Qt::Key_Space, 0},
                                         {Qt::Key_Home, 0},
                                         {Qt::Key_End, 0},
                                         {Qt::Key_Left, 0},
                                         {Qt::Key_Right, 0}}) {
            QTest::keyClick(clock, key);
            QCOMPARE(window.values().setsClock, value);
        }
        QCOMPARE(rowOf(window, &RowValues::tempoffvalue)->focusPolicy(), Qt::NoFocus);
    }

    void enterAndEscape() {
        const std::tuple<const char*, Qt::Key, int> rows[] = {
            {"Resolution", Qt::Key_Return, QDialog::Accepted},
            {"Language", Qt::Key_Enter, QDialog::Accepted},
            {"Cancel", Qt::Key_Return, QDialog::Rejected},
            {"OK", Qt::Key_Space, QDialog::Accepted},
            {"OK", Qt::Key_Escape, QDialog::Rejected},
            {"Resolution", Qt::Key_Escape, QDialog::Rejected}};
        for (const auto& [focus, key, result] : rows) {
            ReadyWindow window;
            showActive(window);
            QSignalSpy finished(&window, &QDialog::finished);
            for (auto* widget : window.findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly)) {
                if (nameOf(widget) == focus && widget->focusPolicy() != Qt::NoFocus)
                    widget->setFocus();
            }
            QTest::keyClick(window.focusWidget(), key);
            QCOMPARE(finished, QList<QVariantList>{{result}});
        }
    }

    // From the dialog to a page, a choice there, and back, by keyboard; the focus is visible.
    void pageByKeyboard() {
        ReadyWindow window;
        showActive(window);
        QTest::keyClick(window.focusWidget(), Qt::Key_Tab);
        QCOMPARE(nameOf(window.focusWidget()), "Picture adjustment");
        const ModalAnswer answer([](QWidget* modal) {
            QApplication::setActiveWindow(modal);
            QVERIFY(QTest::qWaitForWindowActive(modal));
            const QRect place = modal->focusWidget()->geometry();
            const QImage before = modal->grab(place).toImage();
            QTest::keyClick(modal->focusWidget(), Qt::Key_Tab);
            QCOMPARE(nameOf(modal->focusWidget()), "Contrast");
            QTest::keyClick(modal->focusWidget(), Qt::Key_Backtab, Qt::ShiftModifier);
            QVERIFY(modal->grab(place).toImage() != before);
            QTest::keyClick(modal->focusWidget(), Qt::Key_Right);
            QTest::keyClick(modal->focusWidget(), Qt::Key_Return);
        });
        QTest::keyClick(window.focusWidget(), Qt::Key_Space);
        QVERIFY(answer.seen());
        QCOMPARE(window.values().brightvalue, 5);
    }

    // A user who presses Enter at once hasn't read the warning.
    void enterRefusesFormatting() {
        for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter}) {
            WindowBtn7 warning(nullptr);
            for (const bool again : {false, true}) {
                showActive(warning);
                QVERIFY(again || nameOf(warning.focusWidget()) == uiText(UiText::Cancel));
                QTest::keyClick(&warning, key);
                QVERIFY(!warning.isVisible() && !warning.isConfirmed());
                warning.setFocus();
                warning.OnSlotsApply();
            }
        }
    }

    void screenReaderTree() {
        ReadyWindow window;
        window.show();
        for (auto* row : window.findChildren<ChoiceRow*>()) {
            QAccessibleInterface* interface = QAccessible::queryAccessibleInterface(row);
            if (row->row().kind == RowKind::TickBox) {
                QCOMPARE(interface->role(), QAccessible::CheckBox);
                QVERIFY(!interface->state().checked);
                interface->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
                QVERIFY(interface->state().checked);
                continue;
            }
            QCOMPARE(interface->role(), QAccessible::Grouping);
            QCOMPARE(interface->childCount(), int(row->row().choices.size()));
            for (int i = 0; i < interface->childCount(); ++i) {
                QAccessibleInterface* choice = interface->child(i);
                QCOMPARE(choice->role(), QAccessible::RadioButton);
                QVERIFY(choice->parent() == interface && interface->indexOfChild(choice) == i);
                QCOMPARE(choice->state().readOnly != 0, row->row().kind == RowKind::ShownOnly);
                const QPoint middle = choice->rect().center();
                QCOMPARE(interface->childAt(middle.x(), middle.y()), choice);
            }
        }
        QAccessibleInterface* speaker =
            QAccessible::queryAccessibleInterface(rowOf(window, &RowValues::speakervalue));
        QVERIFY(speaker->child(4)->state().checked);
        QCOMPARE(speaker->text(QAccessible::Value), "4");
        speaker->child(1)->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
        QCOMPARE(window.values().speakervalue, 1);
        QVERIFY(speaker->child(1)->state().checked && !speaker->child(4)->state().checked);
    }

    // Every part has a name, and the names of the interface's languages are the only Korean ones.
    void everyPartSpeaks_data() {
        QTest::addColumn<QString>("language");
        QTest::newRow("English") << "en";
        QTest::newRow("Russian") << "ru";
    }
    void everyPartSpeaks() {
        QFETCH(QString, language);
        setCurrentLanguage(language);
        ConfigWindow window;
        WindowGMT zones(&window);
        WindowBtn0 picture(&window);
        WindowBtn2 shock(&window);
        WindowBtn7 partition(&window);
        for (QWidget* each :
             {static_cast<QWidget*>(&window), static_cast<QWidget*>(&zones), static_cast<QWidget*>(&picture),
              static_cast<QWidget*>(&shock), static_cast<QWidget*>(&partition)}) {
            each->show();
            const AccessibleTree tree(each);
            QCOMPARE(tree.nameless.join(u'\n'), QString());
            for (const QString& name : tree.byName.keys()) {
                if (!name.contains(u'('))
                    QVERIFY2(std::none_of(name.begin(), name.end(), isHangul), qPrintable(name));
            }
        }
    }

    // The meaning of a choice, and beside the choices that of the row; in Korean the painted text says it.
    void hoverTexts() {
        ReadyWindow window;
        window.show();
        const OptionRow& row = rowOf(window, &RowValues::qualityvalue)->row();
        const auto rest = [&window](QPoint place) {
            QToolTip::hideText();
            QHelpEvent rests(QEvent::ToolTip, place, window.mapToGlobal(place));
            QCoreApplication::sendEvent(&window, &rests);
            return QToolTip::text();
        };
        QVERIFY(rest(row.choices[2].mark.center()).contains("Video Quality: High"));
        QVERIFY(rest(row.nameBox.topLeft() + QPoint(4, 4)).contains(">Video Quality<"));
        setCurrentLanguage("ru");
        QVERIFY(rest(row.choices[0].mark.center()).contains(uiText(UiText::Low)));
        setCurrentLanguage("kr");
        rest(row.choices[0].mark.center());
        QTRY_COMPARE(QToolTip::text(), QString()); // the one before fades
        setCurrentLanguage("en");
    }

    // No painted text overlaps its neighbour, no button's text its edge.
    void textsFit() {
        const auto fits = [](const QFont& font, const QString& text, int room) {
            const int width = QFontMetrics(fittingFont(font, text, room)).horizontalAdvance(text);
            QVERIFY2(width <= room,
                     qPrintable(QStringLiteral("%1: %2 in %3").arg(text).arg(width).arg(room)));
        };
        for (const InterfaceLanguage& language : kInterfaceLanguages) {
            setCurrentLanguage(language.code);
            ConfigWindow window;
            window.ensurePolished();
            for (const OptionRow& row : config::kRows) {
                fits(window.font(), row.name.text(), roomForName(row, window.fontMetrics()));
                for (const Choice& choice : row.choices)
                    fits(window.font(), choice.text.isNull() ? QString() : choice.name.text(),
                         choice.text.width());
            }
            for (const PageLabel& label : config::kLabels)
                fits(window.font(), label.text.text(), label.room ? label.room : label.box.width());
            const QFont small = uiFont(8);
            for (const pages::PageLayout& page : pages::kPages) {
                for (const OptionRow& row : page.rows)
                    fits(small, row.nameBox.isNull() ? QString() : row.name.text(),
                         roomForName(row, QFontMetrics(small)));
            }
            for (auto* button : window.findChildren<ImageButton*>()) {
                const QRect needed =
                    button->fontMetrics().boundingRect(button->rect(), Qt::AlignCenter, button->text());
                QVERIFY2(button->rect().contains(needed), qPrintable(button->text()));
            }
        }
    }

private:
    std::optional<SettingsFixture> m_fixture;
};

QTEST_MAIN(TestSettingsAccess)
#include "test_settings_access.moc"
