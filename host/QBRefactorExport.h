// Functions the host finds in the module by name.
#pragma once

#define QBREFACTOR_EXPORT extern "C" __attribute__((visibility("default")))
