#pragma once

#include "QBApiSignature.h"

namespace qbapi {

// Calls function as sig describes it with the records given; 0 or a QBHOST_ERR_ status.
int callExport(void* function, const Signature& sig, int argCount, const QBArgRecord* args,
               int* result);

}  // namespace qbapi
