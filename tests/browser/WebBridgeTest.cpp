// The web bridge as a page's script meets it: every call goes through Wine's JScript engine
// and IDispatch, as from an in-app page.

#include "browser/AppInfo.h"
#include "browser/JobRunner.h"
#include "browser/Json.h"
#include "browser/WebBridge.h"
#include "companions/settings/Settings.h"
#include "tests/browser/ScriptHost.h"
#include "tests/support/ScratchEnvironment.h"

#include <gtest/gtest.h>

#include <ole2.h>

#include <string>
#include <vector>

namespace {

// Records what the bridge asked of its surroundings instead of doing it.
class RecordingHost : public browser::BridgeHost {
public:
    void closePage() override { calls.push_back(L"close"); }
    void openInBrowser(const ZString& url) override { calls.push_back(L"browser " + std::wstring(url.c_str())); }
    bool startProgram(const ZString& program, const ZString& arguments) override
    {
        calls.push_back(L"start " + std::wstring(program.c_str()) + L" | " + arguments.c_str());
        return true;
    }
    void showAbout() override { calls.push_back(L"about"); }
    void showFormatOptions() override { calls.push_back(L"formatOptions"); }
    browser::JobRunner& jobs() override { return runner; }

    std::vector<std::wstring> calls;
    browser::JobRunner runner;
};

class WebBridgeTest : public testing::Test {
protected:
    WebBridgeTest() { OleInitialize(nullptr); }
    ~WebBridgeTest() override
    {
        script_.reset();
        bridge_.Reset();
        OleUninitialize();
    }

    void SetUp() override { ASSERT_TRUE(script().ready()) << "no JScript engine"; }

    ScriptHost& script()
    {
        if (!script_)
            script_ = std::make_unique<ScriptHost>(bridge_.Get());
        return *script_;
    }
    std::wstring eval(const std::wstring& expression) { return script().eval(expression); }

    ScratchEnvironment env_;
    RecordingHost host_;
    Microsoft::WRL::ComPtr<browser::WebBridge> bridge_ = browser::makeComObject<browser::WebBridge>(host_);
    std::unique_ptr<ScriptHost> script_;
};

TEST_F(WebBridgeTest, BadArgumentsRaiseAScriptErrorThatSaysWhatWasWrongAndDoNothing)
{
    const struct {
        const wchar_t* call;
        const wchar_t* error;
    } cases[] = {
        {L"external.lang()", L"lang: 1 argument expected, 0 given"},
        {L"external.lang('a', 'b')", L"lang: 1 argument expected, 2 given"},
        {L"external.lang(5)", L"lang: argument 1 must be a text"},
        {L"external.lang(null)", L"lang: argument 1 must be a text"},
        {L"external.lang(new Array(258).join('k'))", L"lang: argument 1 must be a text of at most 256 characters"},
        {L"external.config()", L"config: 1 to 2 arguments expected, 0 given"},
        {L"external.config('language')", L"config: \"language\" is not a value that pages may use"},
        {L"external.config('screenCapture.lastMode', -1)", L"config: argument 2 must be a whole number"},
        {L"external.config('screenCapture.lastMode', 1.5)", L"config: argument 2 must be a whole number"},
        {L"external.config('screenCapture.lastMode', '3')", L"config: argument 2 must be a whole number"},
        {L"external.config('screenCapture.lastMode', 4294967296)", L"config: argument 2 must be a whole number"},
        {L"external.openApp('cmd')", L"openApp: \"cmd\" is not a program that pages may open"},
        {L"external.openApp('Assistant')", L"openApp: \"Assistant\" is not a program"},
        {L"external.openApp('assistant', '-deleteFile x')", L"openApp: argument 2 must be plain words (\"-deleteFile\""},
        {L"external.openApp('assistant', 'C:\\\\x')", L"openApp: argument 2 must be plain words"},
        {L"external.openApp('assistant', 'a\"b')", L"openApp: argument 2 must be plain words"},
        {L"external.openUrl('file:///C:/x')", L"openUrl: argument 1 must be an http or https address"},
        {L"external.openUrl('javascript:alert(1)')", L"openUrl: argument 1 must be an http or https address"},
        {L"external.openUrl('https://x/' + new Array(2050).join('a'))", L"openUrl: argument 1 must be a text of at most 2048 characters"},
        {L"external.close(1)", L"close: 0 arguments expected, 1 given"},
        {L"external.getAppInfo('x')", L"getAppInfo: 0 arguments expected, 1 given"},
    };
    for (const auto& c : cases) {
        const std::wstring answer = eval(c.call);
        EXPECT_EQ(answer.find(std::wstring(L"error: ") + c.error), 0u) << c.call << " gave " << answer;
    }
    EXPECT_EQ(eval(L"external.noSuchMethod()").substr(0, 7), L"error: ");
    EXPECT_EQ(eval(L"(function () { try { external.lang(5); return 'no'; } catch (e) { return e.message; } })()"),
              L"lang: argument 1 must be a text");
    EXPECT_TRUE(host_.calls.empty());
    EXPECT_EQ(userConfig_getDword(L"screenCapture.lastMode", 77), 77u);
}

TEST_F(WebBridgeTest, ConfigReadsAndWritesOnlyTheDialogsOwnValues)
{
    EXPECT_EQ(eval(L"external.config('screenCapture.lastMode')"), L"0");
    EXPECT_EQ(eval(L"external.config('screenCapture.lastMode', 3)"), L"True");
    EXPECT_EQ(eval(L"external.config('screenCapture.lastTarget', 4294967295)"), L"True");
    EXPECT_EQ(userConfig_getDword(L"screenCapture.lastMode", 0), 3u);
    EXPECT_EQ(eval(L"external.config('screenCapture.lastTarget')"), L"4294967295");
    userConfig_setStr(L"screenCapture.lastMode", L"not a number");
    EXPECT_EQ(eval(L"external.config('screenCapture.lastMode')"), L"0");
}

TEST_F(WebBridgeTest, OpenAppStartsOnlyListedProgramsFromTheProgramFolderAndOpensTheDialogs)
{
    EXPECT_EQ(eval(L"external.openApp('assistant')"), L"False"); // no program folder configured
    env_.programValues().writeString(L"BinDir", L"C:\\Program Files\\Pryxa");
    EXPECT_EQ(eval(L"external.openApp('assistant', 'profile=work  x.y')"), L"True");
    EXPECT_EQ(eval(L"external.openApp('about')"), L"True");
    EXPECT_EQ(eval(L"external.openApp('formatOptions', '')"), L"True");
    const std::vector<std::wstring> expected = {
        L"start C:\\Program Files\\Pryxa\\pryxa-Assistant.exe | profile=work x.y", L"about", L"formatOptions"};
    EXPECT_EQ(host_.calls, expected);
}

TEST_F(WebBridgeTest, OpenUrlCloseAndLangReachTheHost)
{
    EXPECT_EQ(eval(L"external.openUrl('HTTPS://pryxa.example/a?b=c')"), L"undefined");
    EXPECT_EQ(eval(L"external.openUrl('http://127.0.0.1/')"), L"undefined");
    EXPECT_EQ(eval(L"external.close()"), L"undefined");
    const std::vector<std::wstring> expected = {L"browser HTTPS://pryxa.example/a?b=c", L"browser http://127.0.0.1/",
                                                L"close"};
    EXPECT_EQ(host_.calls, expected);
    EXPECT_EQ(eval(L"external.lang('general/note')"), L"Note");
    EXPECT_EQ(eval(L"external.lang('no/such/key')"), L"no/such/key");
}

TEST_F(WebBridgeTest, GetAppInfoTellsThePageTheProgramsFactsAsJson)
{
    browser::AppInfo info;
    info.name = L"Pryxa Creator";
    info.version = L"1.2.3";
    info.language = L"de";
    info.architecture = L"x86";
    info.osVersion = L"10.0.19045";
    info.osArchitecture = L"x64";
    info.lcid = 1031;
    info.installer = L"web \"beta\"";
    info.updateMode = L"auto";
    EXPECT_EQ(browser::appInfoJson(info),
              ZString(L"{\"name\":\"Pryxa Creator\",\"version\":\"1.2.3\",\"lang\":\"de\",\"arch\":\"x86\","
                      L"\"osVersion\":\"10.0.19045\",\"osArch\":\"x64\",\"lcid\":1031,"
                      L"\"installer\":\"web \\\"beta\\\"\",\"updateMode\":\"auto\"}"));

    env_.programValues().writeString(L"Installer", L"setup-web");
    env_.programValues().writeString(L"UpdateMode", L"manual");
    const browser::JsonResult answer = browser::parseJson(ZString(eval(L"external.getAppInfo()").c_str()));
    ASSERT_TRUE(answer.ok) << answer.error.toUtf8();
    const browser::AppInfo now = browser::gatherAppInfo();
    for (const auto& [name, value] : {std::pair<const char16_t*, ZString>{u"version", now.version},
                                      {u"lang", now.language}, {u"installer", L"setup-web"},
                                      {u"updateMode", L"manual"}, {u"osVersion", now.osVersion}}) {
        const browser::JsonValue* member = answer.value.member(name);
        ASSERT_TRUE(member && member->isString()) << ZString(name).toUtf8();
        EXPECT_EQ(member->string(), value) << ZString(name).toUtf8();
    }
    EXPECT_EQ(answer.value.member(u"lcid")->number(), now.lcid);
}

TEST_F(WebBridgeTest, ADetachedBridgeRefusesEveryCallThatNeedsItsPage)
{
    bridge_->detach();
    EXPECT_EQ(eval(L"external.close()"), L"error: the page is closed");
    EXPECT_EQ(eval(L"external.openApp('about')"), L"error: the page is closed");
    EXPECT_TRUE(host_.calls.empty());
}

} // namespace
