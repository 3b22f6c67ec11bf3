// Our host library on its own: signatures, calls, variables and windows.
#include <gtest/gtest.h>

#include <string>

#include "qbapi_host.h"

namespace {

int registered(const char* signature) {
    int before = qbHostExportCount();
    int rc = qbRegisterExport(signature, 0, 0);
    EXPECT_EQ(qbHostExportCount(), rc == 0 ? before + 1 : before);
    return rc;
}

QBHostExportInfo last() {
    QBHostExportInfo info{};
    qbHostExportInfo(qbHostExportCount() - 1, &info);
    return info;
}

int twice(void*, int argc, const QBArgRecord* args) {
    return argc == 1 && args[0].tag == QBARG_INT32 ? int(args[0].value) * 2 : -1;
}

}  // namespace

TEST(QBApiSignatures, ReadTypesNamesAndDefaults) {
    ASSERT_EQ(registered("int mod:f(int a,QBPSZ b , QBHREFVAR c, int d QBDEFAULT(-1) )"), 0);
    QBHostExportInfo f = last();
    EXPECT_STREQ(f.module, "mod");
    EXPECT_STREQ(f.name, "f");
    EXPECT_EQ(f.isCommand, 0);
    ASSERT_EQ(f.paramCount, 4);
    EXPECT_EQ(f.params[0].type, QBPARAM_INT);
    EXPECT_EQ(f.params[1].type, QBPARAM_STRING);
    EXPECT_STREQ(f.params[1].name, "b");
    EXPECT_EQ(f.params[2].type, QBPARAM_VAR);
    EXPECT_EQ(f.params[3].hasDefault, 1);
    EXPECT_STREQ(f.params[3].defaultText, "-1");
    ASSERT_EQ(registered("_command void mod:g()"), 0);
    EXPECT_EQ(last().returnsVoid, 1);
    EXPECT_EQ(last().isCommand, 1);
    EXPECT_EQ(last().paramCount, 0);
}

TEST(QBApiSignatures, RefuseWhatDoesNotParse) {
    for (const char* bad : {"", "int f()", "int mod:f(", "long mod:f()", "int mod:f(float x)",
                            "int mod:f(int)", "int mod:f(int a QBDEFAULT(1), int b)",
                            "int mod:f() trailing", "int mod:f(int a QBDEFAULT(1)"})
        EXPECT_EQ(registered(bad), qbmsg::BadSignature) << bad;
    EXPECT_EQ(qbRegisterExport(nullptr, 0, 0), qbmsg::BadSignature);
}

TEST(QBApiCalls, MacroFunctionsAreFoundTestedAndCalled) {
    EXPECT_EQ(qbFindMacroFunction("qbapi_test_nothing", 17), 0);
    EXPECT_EQ(qbIsMacroFunction(0), 0);
    int handle = qbHostRegisterMacroFunction("qbapi_test_twice", twice, nullptr);
    ASSERT_GE(handle, 1);
    EXPECT_EQ(qbFindMacroFunction("qbapi_test_twice", 17), handle);
    EXPECT_NE(qbIsMacroFunction(handle), 0);
    QBArgRecord arg = qbArgInt(21);
    EXPECT_EQ(qbCallMacroFunction(0, handle, 1, &arg), 0);
    EXPECT_EQ(qbVarGetInt(QBVAR_RESULT), 42);
    int result = 0;
    EXPECT_EQ(qbHostInvoke("qbapi_test_twice", 1, &arg, &result), 0);
    EXPECT_EQ(result, 42);
    EXPECT_EQ(qbHostMacroCallCount("qbapi_test_twice"), 2);

    EXPECT_EQ(qbHostUnregisterMacroFunction("qbapi_test_twice"), 0);
    EXPECT_EQ(qbIsMacroFunction(handle), 0);
    EXPECT_EQ(qbCallMacroFunction(0, handle, 1, &arg), qbmsg::NoMacroFunction);
    EXPECT_EQ(qbHostRegisterMacroFunction("qbapi_test_twice", twice, nullptr), handle)
        << "a name keeps its handle";
    EXPECT_EQ(qbHostInvoke("qbapi_test_none", 0, nullptr, &result), qbmsg::NoMacroFunction);
}

TEST(QBApiCalls, RegisteredCommandWithoutAnExportFailsAtCallTime) {
    ASSERT_EQ(qbRegisterExport("int qbapitest:qbapi_test_not_exported(int a)", 0, 0), 0);
    QBArgRecord arg = qbArgInt(1);
    int result = 0;
    EXPECT_EQ(qbHostInvoke("qbapi_test_not_exported", 1, &arg, &result), qbmsg::NotExported);
}

TEST(QBApiVariables, HoldIntegersTextsAndArrays) {
    int v = qbHostVarNew();
    EXPECT_STREQ(qbVarGetString(v), "");
    EXPECT_EQ(qbVarSetInt(v, -17), 0);
    EXPECT_EQ(qbVarGetInt(v), -17);
    EXPECT_STREQ(qbVarGetString(v), "-17");
    EXPECT_EQ(qbVarSetString(v, "0x10"), 0);
    EXPECT_EQ(qbVarGetInt(v), 16);
    EXPECT_EQ(qbHostVarSetInt64(v, int64_t(1) << 40), 0);
    EXPECT_EQ(qbVarGetInt64(v), int64_t(1) << 40);

    ASSERT_EQ(qbHostVarMakeArray(v, 3), 0);
    EXPECT_EQ(qbVarArrayLength(v), 3);
    int e = qbVarArrayElement(v, 2);
    EXPECT_EQ(qbVarSetString(e, "third"), 0);
    EXPECT_STREQ(qbVarGetString(qbVarArrayElement(v, 2)), "third");
    EXPECT_LT(qbVarArrayElement(v, 3), 0);
    qbVarFreeTemp(v);
    EXPECT_EQ(qbVarSetString(e, "x"), qbmsg::NoVariable) << "elements go with their array";
    EXPECT_EQ(qbVarSetInt(v, 1), qbmsg::NoVariable);
    int t = qbVarNewTemp(0);
    EXPECT_NE(t, v) << "handles are not reused";
    qbVarFreeTemp(t);
}

TEST(QBApiWindows, InsertAtTheCursorAndCountLines) {
    int wid = qbHostWindowCreate(nullptr);
    EXPECT_EQ(qbWindowGetProperty(wid, QBWINDOW_TEXT_SIZE), 0);
    EXPECT_EQ(qbWindowLineQuery(wid, 1), 0);
    EXPECT_EQ(qbWindowLineAdd(wid), 0);
    EXPECT_EQ(qbWindowLineQuery(wid, 1), 1);
    EXPECT_EQ(qbWindowInsert(wid, "ab\ncd", 5, 1, 13, 10), 0);
    EXPECT_EQ(qbWindowLineQuery(wid, 2), 1);
    EXPECT_EQ(qbWindowLineQuery(wid, 3), 0);
    EXPECT_EQ(qbHostWindowSetCursor(wid, 2), 0);
    EXPECT_EQ(qbWindowInsert(wid, "XY", 2, 1, 13, 10), 0);
    size_t length = 0;
    const char* text = qbHostWindowText(wid, &length);
    EXPECT_EQ(std::string(text, length), "abXY\ncd");
    char buffer[4];
    EXPECT_EQ(qbWindowReadText(wid, 4, 0, buffer, 0), 4);
    EXPECT_EQ(std::string(buffer, 4), "abXY");
    EXPECT_EQ(qbWindowInsert(wid, nullptr, 3, 1, 13, 10), qbmsg::WrongArguments);
    EXPECT_EQ(qbHostWindowDestroy(wid), 0);
    EXPECT_EQ(qbWindowInsert(wid, "x", 1, 1, 13, 10), qbmsg::NoWindow);
    EXPECT_EQ(qbWindowGetProperty(wid, QBWINDOW_TEXT_SIZE), qbmsg::NoWindow);
}

TEST(QBApiFiles, ReadWholeFilesAndTellWhyNot) {
    quernbase::QBString text;
    EXPECT_EQ(qbReadFileToString(QB_SOURCE_DIR "/examples/include/geometry.h", text, 0, 0, 2), 0);
    EXPECT_TRUE(text.beginsWith("/* Shapes"));
    EXPECT_EQ(qbReadFileToString(QB_SOURCE_DIR "/no/such/file", text, 0, 0, 2), -2);
    EXPECT_EQ(qbReadFileToString(QB_SOURCE_DIR "/examples", text, 0, 0, 2), qbmsg::FileUnreadable);
    EXPECT_EQ(qbReadFileToString(quernbase::QBString(), text, 0, 0, 2), -3015);
    setenv("QBAPI_TEST_VAR", "value", 1);
    EXPECT_STREQ(qbpsGetEnv("QBAPI_TEST_VAR").get(), "value");
    EXPECT_TRUE(qbpsGetEnv("QBAPI_TEST_UNSET_VAR").isNull());
}
