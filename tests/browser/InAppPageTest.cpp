// The in-app page's bridge as a page's script meets it, with the real surroundings: the
// companions' dialogs open modal to the dialog, suite programs start, close() hides the
// page, fetchUrl's answers come on the page's thread, and the page's going cancels them.

#include "browser/InAppPageFactory.h"
#include "tests/browser/LoopbackServer.h"
#include "tests/browser/ScriptHost.h"
#include "tests/companions/DialogKit.h"
#include "tests/support/ResourceCounters.h"

#include <gtest/gtest.h>

#include <ole2.h>

#include <fstream>
#include <sstream>
#include <string>

namespace {

using browser::EmbeddedBrowser;
using browser::InAppBrowserPage;

class InAppPage : public testing::Test {
protected:
    InAppPage()
    {
        OleInitialize(nullptr);
        dialog_ = CreateWindowExW(0, L"STATIC", L"dialog", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 400, 200, nullptr,
                                  nullptr, nullptr, nullptr);
        page_ = std::make_unique<InAppBrowserPage>(EmbeddedBrowser::create(dialog_));
        script_ = std::make_unique<ScriptHost>(page_->bridge());
    }
    ~InAppPage() override
    {
        script_.reset();
        page_.reset();
        DestroyWindow(dialog_);
        OleUninitialize();
    }
    std::wstring eval(const std::wstring& expression) { return script_->eval(expression); }

    EnglishScratch env_;
    HWND dialog_ = nullptr;
    std::unique_ptr<InAppBrowserPage> page_;
    std::unique_ptr<ScriptHost> script_;
};

TEST_F(InAppPage, OpenAppShowsTheCompanionsDialogsModalToTheDialogAndStartsTheAssistant)
{
    for (const auto& [app, title] : {std::pair<const wchar_t*, const wchar_t*>{L"about", L"About Pryxa Creator"},
                                     {L"formatOptions", L"PDF Options for Pictures"}}) {
        std::wstring answer;
        bool modal = false;
        EXPECT_EQ(withDialog(title, [&] { answer = eval(std::wstring(L"external.openApp('") + app + L"')"); },
                             [&](UiRobot&, HWND box) {
                                 modal = GetWindow(box, GW_OWNER) == dialog_ && !IsWindowEnabled(dialog_);
                                 closeDialog(box, CloseBy::closeBox);
                             }),
                  "");
        EXPECT_EQ(answer, L"True");
        EXPECT_TRUE(modal) << ZString(app).toUtf8();
        EXPECT_TRUE(IsWindowEnabled(dialog_));
    }

    // The test helper stands in for the assistant in the program folder and notes how it was started.
    wchar_t helper[MAX_PATH];
    GetModuleFileNameW(nullptr, helper, MAX_PATH);
    std::wstring helperPath(helper);
    helperPath = helperPath.substr(0, helperPath.rfind(L'\\') + 1) + L"pryxa-test-helper.exe";
    const ZString folder = env_.folder() + L"\\program files";
    CreateDirectoryW(folder.c_str(), nullptr);
    ASSERT_TRUE(CopyFileW(helperPath.c_str(), (folder + L"\\pryxa-Assistant.exe").c_str(), FALSE));
    const ZString record = env_.folder() + L"\\started.txt";
    SetEnvironmentVariableW(L"PRYXA_RECORD_FILE", record.c_str());
    env_.programValues().writeString(L"BinDir", folder);
    EXPECT_EQ(eval(L"external.openApp('assistant', 'profile=work')"), L"True");
    std::string started;
    pumpUntil([&] {
        std::ifstream in(record.toUtf8(), std::ios::binary);
        std::getline(in, started);
        return !started.empty();
    }, 10000);
    SetEnvironmentVariableW(L"PRYXA_RECORD_FILE", nullptr);
    EXPECT_NE(started.find("pryxa-Assistant.exe"), std::string::npos) << started;
    EXPECT_NE(started.find(" profile=work"), std::string::npos) << started;
}

TEST_F(InAppPage, CloseHidesThePageAndAPageGoneLeavesABridgeThatRefusesEverything)
{
    page_->navigate(L"pryxa://res/nothing-here");
    EXPECT_EQ(eval(L"external.close()"), L"undefined");
    EXPECT_EQ(page_->browser().state(), EmbeddedBrowser::State::failed);
    EXPECT_FALSE(IsWindowVisible(page_->browser().window()));

    const Microsoft::WRL::ComPtr<IDispatch> kept = page_->bridge(); // as a script engine might
    page_.reset();
    ScriptHost late(kept.Get());
    EXPECT_EQ(late.eval(L"external.close()"), L"error: the page is closed");
    EXPECT_EQ(late.eval(L"external.fetchUrl('http://127.0.0.1/', function () {})"), L"error: the page is closed");
}

TEST_F(InAppPage, FetchUrlAnswersOnThePagesThreadWithStatusHeadersAndTextOrAnError)
{
    browserTest::LoopbackServer server({
        {"/hello", [](const browserTest::ServerRequest& request, browserTest::ServerConnection& connection) {
             const std::string body = request.method + " " + request.header("X-Page") + " " + request.body;
             connection.send("HTTP/1.1 200 OK\r\nContent-Type: text/plain; charset=utf-8\r\nX-One: a\r\nX-One: b\r\n"
                             "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body);
         }},
    });
    const std::wstring callback =
        L"function (status, headers, text, error) {"
        L"  answers.push(status + '|' + text + '|' + error + '|' + (headers.indexOf('\"X-One\":\"a, b\"') >= 0)); }";
    ASSERT_EQ(script_->run(L"var answers = [];"), L"");
    EXPECT_EQ(eval(L"external.fetchUrl('" + server.url("/hello") + L"', " + callback +
                   L", '{\"method\":\"POST\",\"headers\":{\"X-Page\":\"in-app\"},\"body\":\"caf\\u00e9\"}')"),
              L"1");
    EXPECT_EQ(eval(L"external.fetchUrl('" + server.url("/missing") + L"', " + callback + L")"), L"2");
    EXPECT_EQ(eval(L"external.fetchUrl('" + server.url("/hello") + L"', " + callback + L", '{\"maxBytes\":3}')"), L"3");
    ASSERT_TRUE(pumpUntil([&] { return eval(L"answers.length") == L"3"; }, 10000));
    EXPECT_EQ(eval(L"answers.sort().join('\\n')"),
              L"0||The decoded content is larger than the limit of 3 bytes|true\n"
              L"200|POST in-app caf\u00e9||true\n"
              L"404|no such page||false");

    const struct {
        const wchar_t* call;
        const wchar_t* error;
    } refused[] = {
        {L"external.fetchUrl('http://127.0.0.1/')", L"fetchUrl: 2 to 3 arguments expected, 1 given"},
        {L"external.fetchUrl('ftp://127.0.0.1/', function () {})", L"fetchUrl: argument 1 must be an http or https address"},
        {L"external.fetchUrl('http://127.0.0.1/', 'answer')", L"fetchUrl: argument 2 must be a function"},
        {L"external.fetchUrl('http://127.0.0.1/', function () {}, '{\"methd\":\"GET\"}')", L"fetchUrl: unknown option \"methd\""},
        {L"external.fetchUrl('http://127.0.0.1/', function () {}, '{\"timeout\":0}')",
         L"fetchUrl: the option \"timeout\" has a value of the wrong kind or size"},
        {L"external.fetchUrl('http://127.0.0.1/', function () {}, '[1')", L"fetchUrl: the options are no JSON"},
        {L"external.fetchUrl('http://127.0.0.1/', function () {}, '{\"body\":\"x\"}')",
         L"fetchUrl: A GET or HEAD request cannot have a body"},
        {L"external.fetchUrl('http://127.0.0.1/', function () {}, new Array(1048578).join('x'))",
         L"fetchUrl: argument 3 must be a text of at most 1048576 characters"},
    };
    for (const auto& c : refused)
        EXPECT_EQ(eval(c.call).find(std::wstring(L"error: ") + c.error), 0u) << ZString(c.call).toUtf8();
}

TEST_F(InAppPage, ClosingTheDialogWithAHundredRequestsInFlightCancelsAndJoinsThemAll)
{
    const auto hundredRequestsThenClose = [&] {
        browserTest::LoopbackServer server({
            {"/slow", [](const browserTest::ServerRequest&, browserTest::ServerConnection& connection) {
                 // A body that keeps coming, a byte at a time, for longer than the test runs.
                 connection.send("HTTP/1.1 200 OK\r\nContent-Length: 100000\r\n\r\n");
                 connection.trickle(std::string(100000, 'x'), 1, 20);
             }},
        });
        script_ = std::make_unique<ScriptHost>(page_->bridge());
        const std::wstring fetch = L"external.fetchUrl('" + server.url("/slow") + L"', count)";
        ASSERT_EQ(script_->run(L"var answers = 0; function count() { ++answers; }"
                               L"for (var i = 0; i < 100; ++i) " + fetch + L";"), L"");
        EXPECT_TRUE(pumpUntil([&] { return server.requestsFor("/slow") == 4; }, 20000)) << "four workers at work";
        EXPECT_EQ(eval(L"answers"), L"0");
        script_.reset();
        page_ = std::make_unique<InAppBrowserPage>(EmbeddedBrowser::create(dialog_)); // the old page goes
        // The new page makes its control once the dialog has painted: before the counts.
        pumpUntil([&] { return page_->browser().control() != nullptr; }, 5000);
        EXPECT_EQ(server.requestsFor("/slow"), 4) << "nothing started after the page went";
    };
    // The first round lets WinINet set up what it keeps for the process; its pool threads end
    // by themselves some seconds after their last work.
    const int threadsAtStart = countThreads();
    hundredRequestsThenClose();
    pumpUntil([&] { return countThreads() <= threadsAtStart; }, 15000);
    const ResourceCounts before = countResources();
    const int threads = countThreads();
    hundredRequestsThenClose();
    EXPECT_EQ(countThreadsSettled(threads, 15000), threads);
    EXPECT_EQ(countResourcesSettled(before, 15000).describe(), before.describe());
}

} // namespace
