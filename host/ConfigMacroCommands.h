// The refactor_config_* commands as the host's macro language calls them. Text goes in as
// zero-terminated strings and comes out through host variables (handles); every value passes a
// buffer of 1024 bytes, so longer values are cut at 1023 characters both ways.
#pragma once

extern "C" {
int refactor_config_is_open(const char* configName);
int refactor_config_open(const char* xmlConfigFile);
int refactor_config_save(const char* xmlConfigFile);
int refactor_config_close();
int refactor_config_count();
int refactor_config_add(const char* configName, const char* configHeader, const char* includePath);
int refactor_config_add_java(const char* configName, const char* sourcePath, const char* jarPath);
int refactor_config_delete(const char* configName);
int refactor_config_delete_all_type(const char* type);
int refactor_config_delete_all();
int refactor_config_get_name(int configIndex, int configName);
int refactor_config_get_type(int configIndex, int configType);
int refactor_config_get_java_source(const char* name, int src);
int refactor_config_set_name(int configIndex, const char* configName);
int refactor_config_get_header(const char* configName, int configHeader);
int refactor_config_set_header(const char* configName, const char* configHeader);
int refactor_config_count_includes(const char* configName);
int refactor_config_count_jars(const char* configName);
int refactor_config_get_include(const char* configName, int includeIndex, int includePath);
int refactor_config_get_jar(const char* configName, int jarIndex, int jarPath);
int refactor_config_add_include(const char* configName, const char* includePath, int includeIndex);
int refactor_config_add_jar(const char* configName, const char* jarPath, int jarIndex);
int refactor_config_delete_include(const char* configName, const char* includePath);
int refactor_config_delete_jar(const char* configName, const char* jarPath);
int refactor_config_delete_all_includes(const char* configName);
int refactor_config_delete_all_jars(const char* configName);
}
