// The settings windows without a mouse, for a screen reader, and in every language.
#include <QAccessible>
#include <QSignalSpy>

#include "settings/config_layout.h"
#include "settings/config_window.h"
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
    if (!interface)
        return {};
    // A list is called by its label, everything else by itself.
    const auto labels = interface->relations(QAccessible::Label);
    return (labels.isEmpty() ? interface : labels.first().first)->text(QAccessible::Name).simplified();
}

ChoiceRow* rowOf(const QWidget& window, int RowValues::*value) {
    for (auto* row : window.findChildren<ChoiceRow*>()) {
        if (row->row().value == value)
            return row;
    }
    return nullptr;
}

void showActive(QWidget& window) {
    window.show();
    QApplication::setActiveWindow(&window);
    QVERIFY(QTest::qWaitForWindowActive(&window));
}

const QStringList kLanguages = {"kr", "en", "ru", "ch", "es"};

} // namespace

class TestSettingsAccess : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m_fixture.emplace(); }

    void tabOrder() {
        ReadyWindow window;
        showActive(window);
        QCOMPARE(nameOf(window.focusWidget()), QStringLiteral("Resolution"));
        QStringList names;
        for (int i = 0; i < 60; ++i) {
            names.append(nameOf(window.focusWidget()));
            QTest::keyClick(window.focusWidget(), Qt::Key_Tab);
            if (nameOf(window.focusWidget()) == u"Resolution")
                break;
        }
        const QString expected = QStringLiteral(
            "Resolution|영상 조절|영상화질|Video Frame Rate|영상 덮어쓰기|음성녹음|음성안내 음량|"
            "Time Setting|Shock Sensitivity|상세설정|Parking Watch|"
            "Motion Sensitivity|타이머방전전압차단|12V 방전 전압 차단|24V 방전 전압 차단|"
            "Speed Unit|메모리파티션타입|LED 설정|Language|Speed Unit|Cancel|OK|"
            "드라이브|펌웨어|마이콤|Close");
        QCOMPARE(names.join(u'|'), expected);
    }

    void keys_data() {
        QTest::addColumn<QList<int>>("keys");
        QTest::addColumn<int>("speaker");

        QTest::newRow("left") << QList<int>{Qt::Key_Left} << 3;
        QTest::newRow("up") << QList<int>{Qt::Key_Up, Qt::Key_Up} << 2;
        QTest::newRow("right stops at the end") << QList<int>{Qt::Key_Right} << 4;
        QTest::newRow("home") << QList<int>{Qt::Key_Home} << 0;
        QTest::newRow("home, down, end, left")
            << QList<int>{Qt::Key_Home, Qt::Key_Down, Qt::Key_End, Qt::Key_Left} << 3;
        QTest::newRow("space keeps") << QList<int>{Qt::Key_Left, Qt::Key_Space} << 3;
    }
    void keys() {
        QFETCH(QList<int>, keys);
        ReadyWindow window;
        ChoiceRow* row = rowOf(window, &RowValues::speakervalue);
        for (const int key : keys)
            QTest::keyClick(row, Qt::Key(key));
        QTEST(window.values().speakervalue, "speaker");

        ChoiceRow* clock = rowOf(window, &RowValues::setsClock);
        QTest::keyClick(clock, Qt::Key_Space);
        QCOMPARE(window.values().setsClock, 1);
        QTest::keyClick(clock, Qt::Key_Space);
        QCOMPARE(window.values().setsClock, 0);
        for (const Qt::Key key : {Qt::Key_Home, Qt::Key_End, Qt::Key_Left, Qt::Key_Right}) {
            QTest::keyClick(clock, key);
            QCOMPARE(window.values().setsClock, 0);
        }
        QCOMPARE(rowOf(window, &RowValues::tempoffvalue)->focusPolicy(), Qt::NoFocus);
    }

    void enterAndEscape_data() {
        QTest::addColumn<QString>("focus");
        QTest::addColumn<int>("key");
        QTest::addColumn<int>("result");

        QTest::newRow("enter on a row") << "Resolution" << int(Qt::Key_Return) << int(QDialog::Accepted);
        QTest::newRow("keypad enter on a list") << "Language" << int(Qt::Key_Enter) << int(QDialog::Accepted);
        QTest::newRow("enter on OK") << "OK" << int(Qt::Key_Return) << int(QDialog::Accepted);
        QTest::newRow("enter on Cancel") << "Cancel" << int(Qt::Key_Return) << int(QDialog::Rejected);
        QTest::newRow("space on OK") << "OK" << int(Qt::Key_Space) << int(QDialog::Accepted);
        QTest::newRow("escape on OK") << "OK" << int(Qt::Key_Escape) << int(QDialog::Rejected);
        QTest::newRow("escape on a row") << "Resolution" << int(Qt::Key_Escape) << int(QDialog::Rejected);
    }
    void enterAndEscape() {
        QFETCH(QString, focus);
        QFETCH(int, key);
        ReadyWindow window;
        showActive(window);
        QSignalSpy finished(&window, &QDialog::finished);
        for (auto* widget : window.findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly)) {
            if (nameOf(widget) == focus && widget->focusPolicy() != Qt::NoFocus)
                widget->setFocus();
        }
        QTest::keyClick(window.focusWidget(), Qt::Key(key));
        QCOMPARE(finished.size(), 1);
        QTEST(finished.first().first().toInt(), "result");
    }

    // From the dialog to a page, a choice there, and back, by keys only; the focus can be seen.
    void pageByKeyboard() {
        ReadyWindow window;
        showActive(window);
        QTest::keyClick(window.focusWidget(), Qt::Key_Tab);
        QCOMPARE(nameOf(window.focusWidget()), QStringLiteral("영상 조절"));
        const ModalAnswer answer([](QWidget* modal) {
            QApplication::setActiveWindow(modal);
            QVERIFY(QTest::qWaitForWindowActive(modal));
            const QRect place = modal->focusWidget()->geometry();
            const QImage before = modal->grab(place).toImage();
            QTest::keyClick(modal->focusWidget(), Qt::Key_Tab);
            QCOMPARE(nameOf(modal->focusWidget()), QStringLiteral("대비조절"));
            QTest::keyClick(modal->focusWidget(), Qt::Key_Backtab, Qt::ShiftModifier);
            QVERIFY(modal->grab(place).toImage() != before);
            QTest::keyClick(modal->focusWidget(), Qt::Key_Right);
            QTest::keyClick(modal->focusWidget(), Qt::Key_Return);
        });
        QTest::keyClick(window.focusWidget(), Qt::Key_Space);
        QVERIFY(answer.seen());
        QCOMPARE(window.values().brightvalue, 5);
    }

    // Whoever presses Enter at once hasn't read the warning.
    void enterRefusesFormatting() {
        for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter}) {
            WindowBtn7 warning(nullptr);
            showActive(warning);
            QCOMPARE(nameOf(warning.focusWidget()), uiText(UiText::Cancel));
            QTest::keyClick(&warning, key);
            QVERIFY(!warning.isVisible());
            QVERIFY(!warning.isConfirmed());
            warning.setFocus();
            warning.OnSlotsApply();
            warning.show();
            QTest::keyClick(&warning, key);
            QVERIFY(!warning.isConfirmed());
        }
    }

    void screenReaderTree() {
        ReadyWindow window;
        window.show();
        for (auto* row : window.findChildren<ChoiceRow*>()) {
            QAccessibleInterface* interface = QAccessible::queryAccessibleInterface(row);
            QVERIFY(interface && !interface->text(QAccessible::Name).isEmpty());
            if (row->row().kind == RowKind::TickBox) {
                QCOMPARE(interface->role(), QAccessible::CheckBox);
                QVERIFY(!interface->state().checked);
                continue;
            }
            QCOMPARE(interface->role(), QAccessible::Grouping);
            QCOMPARE(interface->childCount(), int(row->row().choices.size()));
            for (int i = 0; i < interface->childCount(); ++i) {
                QAccessibleInterface* choice = interface->child(i);
                QCOMPARE(choice->role(), QAccessible::RadioButton);
                QCOMPARE(choice->parent(), interface);
                QCOMPARE(interface->indexOfChild(choice), i);
                QVERIFY(!choice->text(QAccessible::Name).isEmpty());
                QCOMPARE(choice->state().readOnly != 0, row->row().kind == RowKind::ShownOnly);
                const QPoint middle = choice->rect().center();
                QCOMPARE(interface->childAt(middle.x(), middle.y()), choice);
            }
        }
        QAccessibleInterface* speaker =
            QAccessible::queryAccessibleInterface(rowOf(window, &RowValues::speakervalue));
        QVERIFY(speaker->child(4)->state().checked);
        QCOMPARE(speaker->text(QAccessible::Value), QStringLiteral("4"));
        speaker->child(1)->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
        QCOMPARE(window.values().speakervalue, 1);
        QVERIFY(speaker->child(1)->state().checked && !speaker->child(4)->state().checked);
        QAccessibleInterface* clock =
            QAccessible::queryAccessibleInterface(rowOf(window, &RowValues::setsClock));
        clock->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
        QVERIFY(clock->state().checked);
    }

    void everyPartSpeaks() {
        const auto check = [](QWidget& window) {
            window.show();
            QCOMPARE(AccessibleTree(&window).nameless.join(u'\n'), QString());
        };
        ConfigWindow window;
        check(window);
        WindowGMT zones(&window);
        check(zones);
        WindowBtn0 picture(&window);
        check(picture);
        WindowBtn2 shock(&window);
        check(shock);
        WindowBtn7 partition(&window);
        check(partition);
    }

    void textsFit_data() {
        QTest::addColumn<QString>("language");
        for (const QString& language : kLanguages)
            QTest::newRow(qPrintable(language)) << language;
    }
    // No painted text reaches into what stands beside it, no button's text over its edge.
    void textsFit() {
        QFETCH(QString, language);
        setCurrentLanguage(language);
        const auto fits = [](const QFont& font, const QString& text, int room) {
            const int width = QFontMetrics(fittingFont(font, text, room)).horizontalAdvance(text);
            QVERIFY2(width <= room,
                     qPrintable(QStringLiteral("%1: %2 in %3").arg(text).arg(width).arg(room)));
        };
        ConfigWindow window;
        window.ensurePolished();
        for (const OptionRow& row : config::kRows) {
            fits(window.font(), row.name.text(), roomForName(row, window.fontMetrics()));
            for (const Choice& choice : row.choices) {
                if (!choice.text.isNull())
                    fits(window.font(), choice.name.text(), choice.text.width());
            }
        }
        for (const PageLabel& label : config::kLabels)
            fits(window.font(), label.text.text(), label.room ? label.room : label.box.width());
        for (const pages::PageLayout& page : pages::kPages) {
            for (const OptionRow& row : page.rows)
                fits(uiFont(8), row.nameBox.isNull() ? QString() : row.name.text(),
                     roomForName(row, QFontMetrics(uiFont(8))));
        }
        for (auto* button : window.findChildren<ImageButton*>()) {
            const QRect needed =
                button->fontMetrics().boundingRect(button->rect(), Qt::AlignCenter, button->text());
            QVERIFY2(button->rect().contains(needed), qPrintable(button->text()));
        }
    }

private:
    std::optional<SettingsFixture> m_fixture;
};

QTEST_MAIN(TestSettingsAccess)
#include "test_settings_access.moc"
