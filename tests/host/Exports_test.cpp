// The module as the editor sees it: what it registers, in which order, and what it answers.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/ModuleHost.h"

using namespace testhost;

namespace {

// The macro names in order of registration: the editor's macro code is written against it.
const char* const registrationOrder[] = {
    "qbrefactor_version", "qbrefactor_copyright", "refactor_initialize", "refactor_finalize",
    "refactor_begin_transaction", "refactor_commit_transaction", "refactor_cancel_transaction",
    "refactor_add_file", "refactor_remove_file", "refactor_count_modified_files",
    "refactor_get_modified_file_name", "refactor_get_modified_file_contents",
    "refactor_set_modified_file_contents", "refactor_count_errors", "refactor_get_error",
    "refactor_count_error_files", "refactor_get_error_file_name",
    "refactor_add_user_include_directory", "refactor_config_open", "refactor_config_save",
    "refactor_config_close", "refactor_config_count", "refactor_config_add",
    "refactor_config_add_java", "refactor_config_delete", "refactor_config_delete_all_type",
    "refactor_config_delete_all", "refactor_config_get_name", "refactor_config_get_type",
    "refactor_config_get_java_source", "refactor_config_set_name", "refactor_config_get_header",
    "refactor_config_set_header", "refactor_config_count_includes", "refactor_config_count_jars",
    "refactor_config_get_include", "refactor_config_get_jar", "refactor_config_add_include",
    "refactor_config_add_jar", "refactor_config_delete_include", "refactor_config_delete_jar",
    "refactor_config_delete_all_includes", "refactor_config_delete_all_jars",
    "refactor_config_is_open", "refactor_c_parse", "refactor_c_preprocess", "refactor_c_rename",
    "refactor_c_encapsulate", "refactor_c_extract_method", "refactor_c_extract_method_finish",
    "refactor_c_local_to_field", "refactor_c_global_to_field", "refactor_c_move_field",
    "refactor_c_move_field", "refactor_c_replace_literal", "refactor_c_static_to_instance_method",
    "refactor_c_standard_methods", "refactor_c_standard_methods_finish",
    "refactor_c_find_class_methods", "refactor_c_get_num_class_methods",
    "refactor_c_get_class_method", "refactor_c_add_class_info", "refactor_c_move_method",
    "refactor_c_move_method_find_delegates", "refactor_c_move_method_num_delegates",
    "refactor_c_move_method_get_delegate", "refactor_c_modify_params_get_info",
    "refactor_c_modify_params", "refactor_c_get_super_classes", "refactor_c_pull_up",
    "refactor_c_pull_up_find_members", "refactor_c_push_down", "refactor_c_push_down_find_members",
    "refactor_c_push_down_find_class_in_file", "refactor_c_extract_class",
    "refactor_c_extract_class_generate_member_list", "refactor_c_extract_class_num_members",
    "refactor_c_extract_class_get_member", "refactor_c_extract_class_num_dependencies",
    "refactor_c_extract_class_get_dependency", "qbRefactorOutput",
};

QBHostExportInfo exportAt(int i) {
    QBHostExportInfo info{};
    EXPECT_EQ(qbHostExportInfo(i, &info), 0);
    return info;
}

std::string captured;
void capture(void*, const char* text) { captured += text; }

}  // namespace

TEST(ModuleExports, RegistersEightyOneSignaturesInOrder) {
    loadModule();
    ASSERT_EQ(qbHostExportCount(), 81);
    ASSERT_EQ(sizeof registrationOrder / sizeof registrationOrder[0], 81u);
    for (int i = 0; i < 81; ++i) {
        QBHostExportInfo info = exportAt(i);
        EXPECT_STREQ(info.name, registrationOrder[i]) << "position " << i;
        EXPECT_STREQ(info.module, "qbrefactor");
    }
}

TEST(ModuleExports, SignaturesKeepTheirTypesAndDefaults) {
    loadModule();
    QBHostExportInfo finalize = exportAt(3);
    EXPECT_EQ(finalize.isCommand, 1);
    EXPECT_EQ(finalize.returnsVoid, 1);

    QBHostExportInfo getError = exportAt(14);
    ASSERT_EQ(getError.paramCount, 4);
    EXPECT_EQ(getError.params[1].type, QBPARAM_STRING);
    EXPECT_EQ(getError.params[2].type, QBPARAM_INT);
    EXPECT_EQ(getError.params[3].type, QBPARAM_VAR);
    EXPECT_STREQ(getError.params[3].name, "errorString");

    QBHostExportInfo save = exportAt(19);
    ASSERT_EQ(save.paramCount, 1);
    EXPECT_EQ(save.params[0].hasDefault, 1);
    EXPECT_STREQ(save.params[0].defaultText, "NULL");

    // The second move-field form carries classDefFileName.
    EXPECT_EQ(exportAt(52).paramCount, 7);
    EXPECT_EQ(exportAt(53).paramCount, 8);
    EXPECT_STREQ(exportAt(80).signature, "int qbrefactor:qbRefactorOutput(QBPSZ szText)");
}

TEST(ModuleExports, VersionAndCopyrightShowTheirText) {
    loadModule();
    captured.clear();
    qbHostSetOutputSink(capture, nullptr);
    run("qbrefactor_version");
    EXPECT_EQ(captured, "qbrefactor.dll Version 16.0.3.0\n");
    captured.clear();
    run("qbrefactor_copyright");
    EXPECT_EQ(captured.rfind("qbrefactor.dll Version 16.0.3.0 ", 0), 0u) << captured;
    EXPECT_GT(captured.size(), std::string("qbrefactor.dll Version 16.0.3.0 \n").size());
    qbHostSetOutputSink(nullptr, nullptr);
}

TEST(ModuleExports, InitializeIsRegisteredButNotReachable) {
    loadModule();
    EXPECT_EQ(hostStatus("refactor_initialize"), qbmsg::NotExported);
    EXPECT_EQ(hostStatus("refactor_finalize"), qbmsg::NotExported);
    auto init = reinterpret_cast<int (*)()>(moduleSymbol("qbrefactor_initialize"));
    ASSERT_NE(init, nullptr);
    EXPECT_EQ(init(), 0);
    EXPECT_NE(moduleSymbol("qbRefactorInitialize"), nullptr);
    EXPECT_NE(moduleSymbol("qbrefactor_finalize"), nullptr);
}

TEST(ModuleExports, EveryTransactionCommandHasItsTwin) {
    loadModule();
    const char* pairs[][2] = {
        {"refactor_begin_transaction", "qbRefactorBeginTransaction"},
        {"refactor_commit_transaction", "qbRefactorCommitTransaction"},
        {"refactor_cancel_transaction", "qbRefactorCancelTransaction"},
        {"refactor_add_file", "qbRefactorAddFile"},
        {"refactor_remove_file", "qbRefactorRemoveFile"},
        {"refactor_count_modified_files", "qbRefactorCountModifiedFiles"},
        {"refactor_get_modified_file_name", "qbRefactorGetModifiedFileName"},
        {"refactor_get_modified_file_contents", "qbRefactorGetModifiedFileContents"},
        {"refactor_set_modified_file_contents", "qbRefactorSetModifiedFileContents"},
        {"refactor_count_errors", "qbRefactorCountErrors"},
        {"refactor_get_error", "qbRefactorGetError"},
        {"refactor_count_error_files", "qbRefactorCountErrorFiles"},
        {"refactor_get_error_file_name", "qbRefactorGetErrorFileName"},
        {"refactor_add_user_include_directory", "qbRefactorAddUserIncludeDirectory"},
        {"refactor_c_parse", "qbRefactorCParse"},
        {"refactor_c_preprocess", "qbRefactorCPreprocess"},
    };
    for (auto& p : pairs) {
        EXPECT_NE(moduleSymbol(p[0]), nullptr) << p[0];
        EXPECT_NE(moduleSymbol(p[1]), nullptr) << p[1];
    }
    for (const char* name : {"qbRefactorMessage", "qbRefactorProgress", "qbRefactorFileMessage",
                             "qbRefactorLocateFile", "qbRefactorInsertText", "qbRefactorGetRText",
                             "qbRefactorOutput", "qbRefactorSetOutputCB", "getMessage",
                             "setMessageParameter", "qbDllRegisterExports"})
        EXPECT_NE(moduleSymbol(name), nullptr) << name;
}

TEST(ModuleExports, OutputGoesToTheCallbackOnceOneIsSet) {
    loadModule();
    typedef int (*OutputCB)(const char*);
    auto setCB = reinterpret_cast<OutputCB (*)(OutputCB)>(moduleSymbol("qbRefactorSetOutputCB"));
    ASSERT_NE(setCB, nullptr);

    captured.clear();
    qbHostSetOutputSink(capture, nullptr);
    run("qbRefactorOutput", {qbArgString("to the host")});
    EXPECT_EQ(captured, "to the host");

    static std::string taken;
    OutputCB mine = [](const char* text) { taken += text; return 7; };
    EXPECT_EQ(setCB(mine), mine);
    EXPECT_EQ(setCB(nullptr), mine);  // a null callback keeps the one in force
    captured.clear();
    EXPECT_EQ(run("qbRefactorOutput", {qbArgString("to the caller")}), 7);
    EXPECT_EQ(taken, "to the caller");
    EXPECT_EQ(captured, "");
    qbHostSetOutputSink(nullptr, nullptr);
}

TEST(ModuleExports, WindowTextNeedsRoomForItsTerminator) {
    loadModule();
    auto getRText = reinterpret_cast<int (*)(int, char*, int)>(moduleSymbol("qbRefactorGetRText"));
    ASSERT_NE(getRText, nullptr);
    int wid = qbHostWindowCreate("hello");
    EXPECT_EQ(getRText(wid, nullptr, 0), 5);
    char buffer[8] = "xxxxxxx";
    EXPECT_EQ(getRText(wid, buffer, 5), -8);
    EXPECT_EQ(getRText(wid, buffer, 6), 5);
    EXPECT_STREQ(buffer, "hello");
    EXPECT_EQ(getRText(9999, buffer, 6), qbmsg::NoWindow);
    qbHostWindowDestroy(wid);
}
