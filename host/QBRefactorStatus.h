// Names for the status numbers that the host layer gives. The numbers are the contract with the
// host and its message file; the texts live only there.
#pragma once

enum QBRefactorStatus {
    QBR_OK = 0,
    QBR_ERR_NOT_FOUND = -1,
    QBR_ERR_FILE_NOT_FOUND = -2,
    QBR_ERR_NO_MEMORY = -8,
    QBR_ERR_SHORT_WRITE = -36,
    QBR_ERR_OPEN_FOR_WRITING = -37,
    QBR_ERR_CANCELLED = -2038,
    QBR_ERR_INVALID_ARGUMENT = -3015,
    QBR_ERR_NO_SHOW_ERRORS = -3024,
    QBR_ERR_NO_TRANSACTION = -7502,
    QBR_ERR_NO_PARSER = -7503,
    QBR_ERR_INCLUDE_PATH = -7506,
    QBR_ERR_DEFINE_OPTION = -7507,
    QBR_ERR_CONFIG_HEADER = -7508,
    QBR_ERR_FILE_HAS_ERRORS = -7516,
    QBR_ERR_BAD_SLOT = -8021,
};

// Progress messages sent to the host by number.
enum QBRefactorProgressMessage {
    QBR_MSG_ANALYZING = -7518,
    QBR_MSG_FINISHING_ANALYSIS = -7519,
    QBR_MSG_PARSING = -7520,
    QBR_MSG_WRITING = -7525,
    QBR_MSG_RELEASING = -7526,
    QBR_MSG_PREPROCESSING = -7535,
};
