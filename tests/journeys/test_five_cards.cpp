// The owner of five cars puts their cards into the reader, one after the other, and changes a setting of
// each.
#include "base/language.h"
#include "mainwindow/viewer.h"
#include "settings/config_layout.h"
#include "settings/config_window.h"
#include "support/made_card.h"
#include "support/modal.h"

using namespace ql240;
using layout::ButtonId;

namespace {

constexpr int kBoundMs = 15000;
constexpr std::size_t kCards = 5;

// Of the card `index`; no two cards have the same.
int speakerBefore(std::size_t index) {
    return 4 - static_cast<int>(index);
}
const Choice& chosenSpeaker(std::size_t index) {
    return config::kSpeaker[(index + 3) % kCards];
}
int brightness(std::size_t index) {
    return 1 + static_cast<int>(index);
}

} // namespace

class TestFiveCards : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void eachIsChanged();
    void eachIsReadBack();
    void thePictureFollowsTheCard();

private:
    void put(std::size_t card, const char* file, int value) {
        m_cards[card].put(QStringLiteral("setting/") + QLatin1String(file), QByteArray(1, char(value)));
    }
    int speakerOn(std::size_t card) const {
        return m_cards[card].bytes(QStringLiteral("setting/setspeakervalue.dat")).value_or("\xff").at(0);
    }
    void insert(std::size_t card) { m_viewer.drives.drives = {{m_cards[card].drive(), "CAMERA", "vfat"}}; }
    void inSettings(const std::function<void(ConfigWindow&)>& act);

    Viewer m_viewer;
    std::array<MadeCard, kCards> m_cards;
};

void TestFiveCards::initTestCase() {
    setCurrentLanguage(QStringLiteral("en"));
    for (std::size_t i = 0; i < kCards; ++i) {
        m_cards[i].put(QStringLiteral("update/version.txt"), "QL240 1.02 1.00");
        put(i, "setspeakervalue.dat", speakerBefore(i));
        put(i, "setbrightvalue.dat", brightness(i));
        put(i, "setcontrastvalue.dat", 4);
    }
    m_viewer.addClip(QStringLiteral("VIDEO/REC_2013_04_05_12_30_00.mp4"), Viewer::shortClip(300));
    m_viewer.show();
    m_viewer.openFolder(m_viewer.path(QStringLiteral("VIDEO")));
}

// Opens the settings dialog by its button and acts in it once it has read the card.
void TestFiveCards::inSettings(const std::function<void(ConfigWindow&)>& act) {
    const ModalAnswer user([&](QWidget* modal) {
        auto* dialog = qobject_cast<ConfigWindow*>(modal);
        QVERIFY(dialog);
        QTRY_VERIFY_WITH_TIMEOUT(!dialog->settingFolder().isEmpty(), kBoundMs);
        act(*dialog);
    });
    m_viewer.click(ButtonId::Setting);
    QVERIFY(user.seen());
}

void TestFiveCards::eachIsChanged() {
    for (std::size_t i = 0; i < kCards; ++i) {
        insert(i);
        inSettings([&](ConfigWindow& dialog) {
            QCOMPARE(dialog.values().speakervalue, speakerBefore(i));
            QTest::mouseClick(dialog.windowHandle(), Qt::LeftButton, {}, chosenSpeaker(i).hit.center());
            QTest::mouseClick(dialog.windowHandle(), Qt::LeftButton, {}, config::kOk.center());
        });
        for (std::size_t card = 0; card < kCards; ++card)
            QCOMPARE(speakerOn(card), card <= i ? chosenSpeaker(card).value : speakerBefore(card));
    }
}

void TestFiveCards::eachIsReadBack() {
    for (std::size_t i = 0; i < kCards; ++i) {
        insert(i);
        inSettings([&](ConfigWindow& dialog) {
            QCOMPARE(dialog.values().speakervalue, chosenSpeaker(i).value);
            QTest::keyClick(dialog.windowHandle(), Qt::Key_Escape);
        });
    }
}

// Accepted settings make the next play read the card that is in the reader then.
void TestFiveCards::thePictureFollowsTheCard() {
    constexpr std::array kAdded{-60, -40, -20, 0, 20};
    for (std::size_t i = 0; i < kCards; ++i) {
        insert(i);
        inSettings([](ConfigWindow& dialog) {
            QTest::mouseClick(dialog.windowHandle(), Qt::LeftButton, {}, config::kOk.center());
        });
        m_viewer.click(ButtonId::Play);
        QTRY_COMPARE_WITH_TIMEOUT(m_viewer.window->pictureAdjustment().brightness(), kAdded[i], kBoundMs);
    }
}

QTEST_MAIN(TestFiveCards)
#include "test_five_cards.moc"
