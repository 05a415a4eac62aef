// The helper objects, the class registry and the safety answer of every creatable class.

#include "TraceCapture.h"
#include "frame/ClassRegistry.h"
#include "frame/Globals.h"
#include "frame/NXRClientSetupObject.h"
#include "frame/NXRInfo.h"
#include "frame/ObjectSafety.h"

#include <QRegularExpression>
#include <gtest/gtest.h>

#include <climits>
#include <memory>

using namespace nxr;

TEST(NXRInfo, AnswersVersionCacheRootAndBuild)
{
    NXRInfo info;
    EXPECT_TRUE(info.CheckVNUM(64));
    EXPECT_FALSE(info.CheckVNUM(65));
    EXPECT_TRUE(info.CheckVNUM(-1));
    EXPECT_TRUE(info.CheckVNUM(INT_MIN));
    EXPECT_FALSE(info.CheckVNUM(INT_MAX));
    EXPECT_EQ(info.StorageFolder(), Globals::storageFolder() + "/");
    EXPECT_TRUE(QRegularExpression("^V\\d\\.\\d\\d[A-Z]/\\d\\d$").match(info.NXRBuildID()).hasMatch())
        << info.NXRBuildID().toStdString();
    EXPECT_EQ(info.property("NXRBuildID").toString(), info.NXRBuildID());
}

TEST(NXRClientSetupObject, SetsTrimmedValuesAndReadsUnsetAsEmpty)
{
    TraceCapture trace;
    {
        NXRClientSetupObject env;
        env.Environment("NXR_TEST_VARIABLE", "  abc  ");
        EXPECT_EQ(env.Environment("NXR_TEST_VARIABLE"), "abc");
        EXPECT_EQ(qEnvironmentVariable("NXR_TEST_VARIABLE"), "abc"); // the process sees it
        EXPECT_EQ(env.Environment("NXR_TEST_SURELY_UNSET"), "");
        env.SetEnvironment("TORVIK_LANG", " kn ");
        EXPECT_EQ(Globals::languageCode(), "jp");
        env.Environment("BAD=NAME", "x"); // refused quietly
        EXPECT_EQ(env.GetEnvironment("BAD=NAME"), "");
        ::unsetenv("TORVIK_LANG");
    }
    EXPECT_EQ(trace.lines(),
              (QStringList{"[NXRClientSetupObject.Initialize]\r\n", "[NXRClientSetupObject.Terminate]\r\n"}));
}

TEST(ClassRegistry, CreatesByPlainAndQualifiedName)
{
    auto& registry = ClassRegistry::instance();
    for (const char* name : {"NXRInfo", "NXRClientSetupObject", "NXRCacheControl"}) {
        for (const QString& spelled : {QString(name), "NexaroControls." + QString(name)}) {
            std::unique_ptr<QObject> object(registry.create(spelled));
            ASSERT_TRUE(object) << spelled.toStdString();
            EXPECT_STREQ(object->metaObject()->className(), name);
        }
    }
    EXPECT_EQ(registry.create("NXRNothing"), nullptr);
    EXPECT_EQ(registry.create("NexaroControls."), nullptr);
    EXPECT_EQ(registry.create("nxrinfo"), nullptr);
}

TEST(ObjectSafety, EveryRegisteredClassAnswersTheSafetyQuery)
{
    TraceCapture trace;
    for (const QString& name : ClassRegistry::instance().names()) {
        std::unique_ptr<QObject> object(ClassRegistry::instance().create(name));
        ASSERT_TRUE(object) << name.toStdString();
        auto* safety = qobject_cast<IObjectSafety*>(object.get());
        ASSERT_TRUE(safety) << name.toStdString();
        std::uint32_t supported = 0, enabled = 0;
        EXPECT_EQ(safety->GetInterfaceSafetyOptions(kIID_IDispatch, &supported, &enabled), S_Ok);
        EXPECT_EQ(supported, 3u);
        EXPECT_EQ(enabled, kSafeForUntrustedCaller);
        for (const QString& iid :
             {kIID_IPersistStorage, kIID_IPersistStream, kIID_IPersistPropertyBag.toLower()}) {
            EXPECT_EQ(safety->GetInterfaceSafetyOptions(iid, &supported, &enabled), S_Ok);
            EXPECT_EQ(enabled, kSafeForUntrustedData);
        }
        EXPECT_TRUE(isSafeForScripting(object.get()));
    }
    EXPECT_TRUE(trace.lines().filter("IObjectSafety").isEmpty());
}

TEST(ObjectSafety, RefusesOtherInterfacesAndFollowsTheFlags)
{
    NXRInfo info;
    std::uint32_t supported = 0, enabled = 7;
    {
        TraceCapture trace;
        const QString iUnknown = "{00000000-0000-0000-C000-000000000046}";
        EXPECT_EQ(info.GetInterfaceSafetyOptions(iUnknown, &supported, &enabled), E_NoInterface);
        EXPECT_EQ(enabled, 0u);
        EXPECT_EQ(info.SetInterfaceSafetyOptions(iUnknown, 1, 1), E_NoInterface);
        EXPECT_EQ(trace.lines(),
                  (QStringList{"[NXRInfo.IObjectSafety_GetInterfaceSafetyOptions] E_NOINTERFACE\r\n",
                               "[NXRInfo.IObjectSafety_SetInterfaceSafetyOptions] E_NOINTERFACE\r\n"}));
    }
    EXPECT_EQ(info.SetInterfaceSafetyOptions(kIID_IDispatch, 1, 1), S_Ok);
    EXPECT_EQ(info.SetInterfaceSafetyOptions(kIID_IDispatch, 3, 3),
              E_Fail); // data safety is not for IDispatch
    EXPECT_EQ(info.SetInterfaceSafetyOptions(kIID_IPersistStream, 2, 2), S_Ok);

    setSafeForScripting(false);
    EXPECT_EQ(info.GetInterfaceSafetyOptions(kIID_IDispatch, &supported, &enabled), S_Ok);
    EXPECT_EQ(enabled, 0u);
    EXPECT_EQ(info.SetInterfaceSafetyOptions(kIID_IDispatch, 1, 1), E_Fail);
    EXPECT_FALSE(isSafeForScripting(&info));
    setSafeForScripting(true);
    setSafeForInitializing(false);
    EXPECT_EQ(info.GetInterfaceSafetyOptions(kIID_IPersistPropertyBag, &supported, &enabled), S_Ok);
    EXPECT_EQ(enabled, 0u);
    setSafeForInitializing(true);
    EXPECT_TRUE(isSafeForScripting(&info));

    QObject plain; // an object without the interface is never safe
    EXPECT_FALSE(isSafeForScripting(&plain));
}
