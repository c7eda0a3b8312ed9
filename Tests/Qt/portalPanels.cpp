// SPDX-License-Identifier: MIT
#include "QtTest.h"
#include "Support/TemporaryFolder.h"

#include <AppKit/NSOpenPanel.h>

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusError>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVirtualObject>
#include <QProcess>

#include <optional>
#include <vector>

namespace zr {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kService = "org.freedesktop.portal.Desktop";
constexpr const char* kRequest = "org.freedesktop.portal.Request";

// A session bus that nothing else is on, and on which nothing starts by itself. Its address is always the same:
// the bus library reads that once.
class PrivateBus {
public:
    PrivateBus() {
        const auto settings =
            folder().write("bus.conf", "<busconfig><type>session</type><listen>unix:path=" + socket() +
                                           "</listen><policy context=\"default\">"
                                           "<allow send_destination=\"*\"/>"
                                           "<allow receive_sender=\"*\"/>"
                                           "<allow own=\"*\"/></policy></busconfig>");
        qputenv("DBUS_SESSION_BUS_ADDRESS", QByteArray::fromStdString("unix:path=" + socket()));
        daemon_.start("dbus-daemon",
                      {"--nofork", "--print-address", "--config-file=" + QString::fromStdString(settings)});
        if (!daemon_.waitForReadyRead()) throw std::runtime_error("the bus did not start");
    }
    ~PrivateBus() { end(); }
    PrivateBus(const PrivateBus&) = delete;
    PrivateBus& operator=(const PrivateBus&) = delete;

    void end() {
        daemon_.terminate();
        daemon_.waitForFinished();
    }

private:
    static const test::TemporaryFolder& folder() {
        static const test::TemporaryFolder folder;
        return folder;
    }
    static std::string socket() { return (folder().path() / "bus").string(); }

    QProcess daemon_;
};

// Stands in for the desktop's portal, and keeps what it is asked. Its objects are whatever paths there are.
class StandInPortal : public QDBusVirtualObject {
public:
    StandInPortal() {
        EXPECT_TRUE(bus().isConnected()) << bus().lastError().message().toStdString();
        EXPECT_TRUE(bus().registerVirtualObject("/", this, QDBusConnection::SubPath));
        EXPECT_TRUE(bus().registerService(kService));
    }
    ~StandInPortal() override { QDBusConnection::disconnectFromBus("stand-in"); }
    StandInPortal(const StandInPortal&) = delete;
    StandInPortal& operator=(const StandInPortal&) = delete;

    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection&) override {
        if (message.interface() == kRequest && message.member() == "Close") {
            closed.push_back(message.path());
            return true;
        }
        if (message.interface() != "org.freedesktop.portal.FileChooser" || message.member() != "OpenFile")
            return false;
        asked.push_back(message);
        if (error) return bus().send(message.createErrorReply(*error, "as the test wants it"));
        if (answersFirst) answer(0, *answersFirst);
        if (replies) reply();
        return true;
    }

    void reply() { bus().send(asked.back().createReply(QVariant::fromValue(QDBusObjectPath(request())))); }
    QVariantMap options() const { return qdbus_cast<QVariantMap>(asked.back().arguments().at(2)); }
    // Of the newest request.
    QString request() const {
        const QString sender = asked.back().service().mid(1).replace('.', '_');
        return "/org/freedesktop/portal/desktop/request/" + sender + "/" +
               (otherToken.isEmpty() ? options().value("handle_token").toString() : otherToken);
    }
    void answer(uint code, const QStringList& uris) { answerTo(request(), code, {{"uris", uris}}); }
    void answerTo(const QString& path, uint code, const QVariantMap& results) {
        auto response = QDBusMessage::createTargetedSignal(asked.back().service(), path, kRequest, "Response");
        response << code << results;
        EXPECT_TRUE(bus().send(response));
    }
    void vanish() { EXPECT_TRUE(bus().unregisterService(kService)); }

    std::vector<QDBusMessage> asked;
    std::vector<QString> closed;
    QString otherToken;
    std::optional<QString> error;
    std::optional<QStringList> answersFirst;
    bool replies = true;

private:
    static QDBusConnection bus() {
        return QDBusConnection::connectToBus(QDBusConnection::SessionBus, "stand-in");
    }
};

class QtPortalPanels : public test::QtTest {
protected:
    QtPortalPanels() : QtTest({.sandboxed = true}) {}

    void SetUp() override {
        pressed_ = make<test::Pressed>(NSMakeRect(0, 0, 400, 300));
        show(pressed_, {400, 300});
    }
    void TearDown() override {
        window_->close(); // cancels what a test has left open
        QtTest::TearDown();
    }
    static bool comes(const std::function<bool()>& condition) { return QTest::qWaitFor(condition, 20'000); }
    void begin() {
        panel_->beginSheetModalForWindow_completionHandler(
            window_.get(), [this](int response) { responses_.push_back(response); });
    }
    // And waits until the portal has been asked.
    void ask() {
        const auto before = portal_->asked.size();
        begin();
        ASSERT_TRUE(comes([&] { return portal_->asked.size() > before; }));
    }
    bool ends(std::size_t count = 1) const {
        return comes([&] { return responses_.size() == count; });
    }
    std::vector<std::string> chosen() const {
        std::vector<std::string> paths;
        for (const auto& url : panel_->URLs()) paths.push_back(url.path());
        return paths;
    }
    static void click(QWidget* widget) {
        QTest::mouseClick(widget->windowHandle(), Qt::LeftButton, {}, {20, 20});
    }
    // As it is with no panel.
    bool takesInput() {
        const int before = pressed_->count;
        click(topLevel());
        return pressed_->count == before + 1;
    }

    PrivateBus bus_;
    std::unique_ptr<StandInPortal> portal_ = std::make_unique<StandInPortal>();
    std::shared_ptr<NSOpenPanel> panel_ = NSOpenPanel::openPanel();
    std::shared_ptr<test::Pressed> pressed_;
    std::vector<int> responses_;
};

} // namespace

TEST_F(QtPortalPanels, SayWhatIsToBeChosen) {
    panel_->setPrompt("Trust & go_on");
    panel_->setCanChooseFiles(false);
    panel_->setCanChooseDirectories(true);
    panel_->setAllowsMultipleSelection(true);
    panel_->setDirectoryURL(NSURL::fileURLWithPath("/tmp/Größe"));
    ask();
    const auto& message = portal_->asked.back();
    EXPECT_EQ(message.path(), "/org/freedesktop/portal/desktop");
    EXPECT_EQ(message.signature(), "ssa{sv}");
    EXPECT_EQ(message.arguments().at(0), "") << "no window that the portal could know";
    EXPECT_EQ(message.arguments().at(1), "Trust & go_on");
    auto options = portal_->options();
    EXPECT_FALSE(options.take("handle_token").toString().isEmpty());
    const QVariantMap wanted = {{"accept_label", "Trust & go__on"},
                                {"modal", true},
                                {"multiple", true},
                                {"directory", true},
                                {"current_folder", QByteArray("/tmp/Größe").append('\0')}};
    EXPECT_EQ(options, wanted);
    portal_->answer(1, {});
    EXPECT_TRUE(ends());
}

TEST_F(QtPortalPanels, SayNothingThatWasNotSet) {
    ask();
    auto options = portal_->options();
    options.remove("handle_token");
    const QVariantMap wanted = {
        {"accept_label", "Open"}, {"modal", true}, {"multiple", false}, {"directory", false}};
    EXPECT_EQ(options, wanted);
    // The portal chooses one kind or the other.
    portal_->answer(1, {});
    EXPECT_TRUE(ends());
    panel_->setCanChooseDirectories(true);
    ask();
    EXPECT_EQ(portal_->options().value("directory"), false);
}

TEST_F(QtPortalPanels, NameEachRequestAnew) {
    ask();
    const auto first = portal_->options().value("handle_token");
    portal_->answer(1, {});
    ASSERT_TRUE(ends());
    ask();
    EXPECT_NE(portal_->options().value("handle_token"), first);
}

TEST_F(QtPortalPanels, OneIsChosen) {
    ask();
    portal_->answer(0, {"file:///nowhere/a%20file%25%23%3F"});
    ASSERT_TRUE(ends());
    EXPECT_THAT(responses_, ElementsAre(1));
    EXPECT_THAT(chosen(), ElementsAre("/nowhere/a file%#?"));
    EXPECT_THAT(portal_->closed, IsEmpty()) << "it has been answered";
    EXPECT_TRUE(takesInput());
}

TEST_F(QtPortalPanels, SeveralAreChosenInTheirOrderWhateverTheirNames) {
    panel_->setAllowsMultipleSelection(true);
    ask();
    portal_->answer(0, {"file:///nowhere/z", "http://nowhere/not-here", "file:///nowhere/Gr%C3%B6%C3%9Fe",
                        "file:///nowhere/%FF", "file://machine/nowhere/a"});
    ASSERT_TRUE(ends());
    EXPECT_THAT(responses_, ElementsAre(1));
    EXPECT_THAT(chosen(), ElementsAre("/nowhere/z", "/nowhere/Größe", "/nowhere/\xff", "/nowhere/a"));
}

TEST_F(QtPortalPanels, AnyOtherAnswerIsCancel) {
    std::size_t count = 0;
    for (const uint code : {1u, 2u, 77u}) {
        ask();
        portal_->answer(code, {"file:///nowhere/file"});
        ASSERT_TRUE(ends(++count));
    }
    ask();
    portal_->answer(0, {});
    ASSERT_TRUE(ends(++count));
    ask();
    portal_->answerTo(portal_->request(), 0, {{"uris", 5}});
    ASSERT_TRUE(ends(++count));
    EXPECT_THAT(responses_, ElementsAre(0, 0, 0, 0, 0));
    EXPECT_THAT(chosen(), IsEmpty());
    EXPECT_THAT(portal_->closed, IsEmpty());
    EXPECT_TRUE(takesInput());
}

TEST_F(QtPortalPanels, AnErrorIsCancel) {
    portal_->error = "org.freedesktop.portal.Error.Failed";
    begin();
    EXPECT_FALSE(takesInput());
    ASSERT_TRUE(ends());
    EXPECT_THAT(responses_, ElementsAre(0));
    EXPECT_TRUE(takesInput());
}

TEST_F(QtPortalPanels, NoServiceIsCancel) {
    portal_->vanish();
    begin();
    ASSERT_TRUE(ends());
    EXPECT_THAT(responses_, ElementsAre(0));
    EXPECT_TRUE(takesInput());
}

TEST_F(QtPortalPanels, NoBusIsCancel) {
    portal_.reset();
    bus_.end();
    begin();
    ASSERT_TRUE(ends());
    EXPECT_THAT(responses_, ElementsAre(0));
    EXPECT_TRUE(takesInput());
}

TEST_F(QtPortalPanels, AServiceThatVanishesIsCancel) {
    ask();
    EXPECT_FALSE(takesInput());
    portal_->vanish();
    ASSERT_TRUE(ends());
    EXPECT_THAT(responses_, ElementsAre(0));
    EXPECT_TRUE(takesInput());
}

TEST_F(QtPortalPanels, ABusThatVanishesIsCancel) {
    ask();
    bus_.end();
    ASSERT_TRUE(ends());
    EXPECT_THAT(responses_, ElementsAre(0));
    EXPECT_TRUE(takesInput());
}

TEST_F(QtPortalPanels, ARequestMayHaveAnotherNameThanWasWished) {
    portal_->otherToken = "of_the_portals_own";
    ask();
    portal_->answer(0, {"file:///nowhere/file"});
    ASSERT_TRUE(ends());
    EXPECT_THAT(chosen(), ElementsAre("/nowhere/file"));
}

TEST_F(QtPortalPanels, TheAnswerMayComeBeforeTheRequestsName) {
    for (const char* token : {"", "of_the_portals_own"}) {
        portal_->otherToken = token;
        portal_->answersFirst = QStringList{"file:///nowhere/file"};
        responses_.clear();
        begin();
        ASSERT_TRUE(ends());
        EXPECT_THAT(chosen(), ElementsAre("/nowhere/file"));
    }
    EXPECT_THAT(portal_->closed, IsEmpty());
}

TEST_F(QtPortalPanels, TheAnswerToAnotherRequestIsNotTaken) {
    ask();
    portal_->answerTo(portal_->request() + "x", 0, {{"uris", QStringList{"file:///nowhere/another"}}});
    portal_->answer(0, {"file:///nowhere/file"});
    ASSERT_TRUE(ends());
    EXPECT_THAT(chosen(), ElementsAre("/nowhere/file"));
}

TEST_F(QtPortalPanels, ASheetBlocksItsWindowAlone) {
    const auto other = make<test::Pressed>(NSMakeRect(0, 0, 100, 100));
    const auto second =
        make<NSWindow>(&NSWindow::initWithContentRect_styleMask_backing_defer, NSMakeRect(0, 0, 100, 100),
                       NSWindowStyleMaskTitled, NSBackingStoreBuffered, false);
    second->setTitle("second");
    second->setContentView(other);
    second->makeKeyAndOrderFront(nullptr);
    settle();
    QWidget* secondReal = nullptr;
    for (QWidget* const widget : QApplication::topLevelWidgets())
        if (widget->windowTitle() == "second") secondReal = widget;
    ASSERT_NE(secondReal, nullptr);

    ask();
    EXPECT_FALSE(takesInput());
    click(secondReal);
    EXPECT_EQ(other->count, 1);
    portal_->answer(1, {});
    ASSERT_TRUE(ends());
    EXPECT_TRUE(takesInput());
    second->close();
}

TEST_F(QtPortalPanels, RunModalBlocksEveryWindowAndReturnsWithTheAnswer) {
    then([&] {
        ASSERT_TRUE(comes([&] { return !portal_->asked.empty(); }));
        EXPECT_FALSE(takesInput());
        // Within its session another begins and ends.
        const auto inner = NSOpenPanel::openPanel();
        then([&] {
            ASSERT_TRUE(comes([&] { return portal_->asked.size() == 2; }));
            portal_->answer(0, {"file:///nowhere/inner"});
        });
        EXPECT_EQ(inner->runModal(), 1);
        EXPECT_EQ(inner->URL()->path(), "/nowhere/inner");
        EXPECT_FALSE(takesInput());
        portal_->asked.pop_back();
        portal_->answer(0, {"file:///nowhere/outer"});
    });
    EXPECT_EQ(panel_->runModal(), 1);
    EXPECT_THAT(chosen(), ElementsAre("/nowhere/outer"));
    EXPECT_TRUE(takesInput());
}

TEST_F(QtPortalPanels, RunModalEndsWithTheApplication) {
    auto& application = NSApplication::sharedApplication();
    std::optional<int> response;
    then([&] { response = panel_->runModal(); });
    then([&] {
        EXPECT_TRUE(comes([&] { return !portal_->asked.empty(); }));
        settle();
        application.terminate(nullptr);
    });
    application.run();
    EXPECT_EQ(response, 0);
    ASSERT_TRUE(comes([&] { return !portal_->closed.empty(); }));
    EXPECT_THAT(portal_->closed, ElementsAre(portal_->request()));
}

TEST_F(QtPortalPanels, AreClosedWithTheirWindow) {
    ask();
    settle();
    window_->close();
    EXPECT_THAT(responses_, ElementsAre(0));
    ASSERT_TRUE(comes([&] { return !portal_->closed.empty(); }));
    EXPECT_THAT(portal_->closed, ElementsAre(portal_->request()));
    portal_->answer(0, {"file:///nowhere/file"}); // too late
    settle();

    window_->makeKeyAndOrderFront(nullptr);
    settle();
    ask();
    settle();
    delete topLevel();
    EXPECT_THAT(responses_, ElementsAre(0, 0));
    ASSERT_TRUE(comes([&] { return portal_->closed.size() == 2; }));
    EXPECT_EQ(portal_->closed.back(), portal_->request());
    EXPECT_THAT(chosen(), IsEmpty());
}

TEST_F(QtPortalPanels, AreClosedAsSoonAsTheyHaveAName) {
    portal_->replies = false;
    ask();
    window_->close();
    EXPECT_THAT(responses_, ElementsAre(0));
    settle();
    EXPECT_THAT(portal_->closed, IsEmpty());
    portal_->reply();
    ASSERT_TRUE(comes([&] { return !portal_->closed.empty(); }));
    EXPECT_THAT(portal_->closed, ElementsAre(portal_->request()));
}

TEST_F(QtPortalPanels, TheHandlerMayShowTheNext) {
    panel_->beginSheetModalForWindow_completionHandler(window_.get(), [this](int) { begin(); });
    ASSERT_TRUE(comes([&] { return portal_->asked.size() == 1; }));
    portal_->answer(0, {"file:///nowhere/first"});
    ASSERT_TRUE(comes([&] { return portal_->asked.size() == 2; }));
    EXPECT_FALSE(takesInput());
    portal_->answer(0, {"file:///nowhere/second"});
    ASSERT_TRUE(ends());
    EXPECT_THAT(chosen(), ElementsAre("/nowhere/second"));
    EXPECT_TRUE(takesInput());
}

} // namespace zr
