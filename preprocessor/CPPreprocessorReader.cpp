#include "CPPreprocessorReader.h"

using quernbase::QBString;

int cpTakeToken(CPTokenSource& source, CPPreprocessorFilter* node) {
    TBPToken<CPParseNodeType>* token = source.currentToken();
    if (!token) return 0;
    int rc = node->addChild(token);
    source.nextToken();
    return rc;
}

int cpTakeRestOfLine(CPTokenSource& source, CPPreprocessorFilter* node) {
    while (!cpAtLineEnd(source.currentType()))
        if (int rc = cpTakeToken(source, node)) return rc;
    return 0;
}

int cpReadNamedDirective(CPTokenSource& source, CPPreprocessorFilter* node, bool keepBuiltin) {
    int rc = cpTakeToken(source, node);
    if (rc == 0) rc = cpTakeToken(source, node);
    int kind = source.currentType();
    if (rc == 0 && (cpIsIdentifierLike(kind) || cpIsBuiltinKind(kind))) {
        if (!(keepBuiltin && cpIsBuiltinKind(kind))) source.currentToken()->setType(CPT_IDENTIFIER);
        rc = cpTakeToken(source, node);
        if (rc == 0 && !cpAtLineEnd(source.currentType()))
            node->logErrorAtSource(source, qbmsg::UnexpectedToken,
                                   source.currentToken()->getSpellingConst());
    } else if (rc == 0) {
        node->logErrorAtSource(source, qbmsg::NameRequired);
    }
    return rc == 0 ? cpTakeRestOfLine(source, node) : rc;
}

int cpSkipTo(CPTokenSource& source, CPPreprocessorFilter* node, int kind, bool consume) {
    for (int k = source.currentType(); k != kind; k = source.currentType()) {
        if (k == CPT_EOF) {
            node->logErrorAtSource(source, qbmsg::UnexpectedEndOfFile);
            return -1;
        }
        if (int rc = cpTakeToken(source, node)) return rc;
    }
    return consume ? cpTakeToken(source, node) : 0;
}

int cpAdoptChild(CPPreprocessorFilter* node, CPPreprocessorFilter* child) {
    if (!child) return qbmsg::OutOfMemory;
    if (node->addChild(child) != 0) {
        delete child;
        return qbmsg::OutOfMemory;
    }
    return 0;
}

CPPreprocessorBuiltin* cpParseBuiltin(CPTokenSource& source) {
    CPPreprocessorBuiltin* node = new (std::nothrow) CPPreprocessorBuiltin;
    if (node && cpTakeToken(source, node) != 0) {
        delete node;
        return nullptr;
    }
    return node;
}

namespace {

bool isBranchWord(int kind) {
    return kind == CPT_kw_elif || kind == CPT_kw_else || kind == CPT_kw_endif;
}

const char* branchText(int kind) {
    return kind == CPT_kw_elif ? "#elif" : kind == CPT_kw_else ? "#else" : "#endif";
}

// One line of a unit: a directive or a text run.
int readItem(CPTokenSource& source, CPPreprocessorFilter* node, int depth) {
    if (source.currentType() != CPT_POUND) return cpAdoptChild(node, cpParseText(source, depth));
    int word = source.peekType(1);
    if (isBranchWord(word) && node->getType() == CPN_PreprocessorUnit)
        node->logErrorAtSource(source, qbmsg::UnmatchedDirective, "#if", branchText(word));
    return cpAdoptChild(node, cpParseDirective(source, depth));
}

// A line that doesn't end where it should: keep the rest of it and go on.
int recoverLine(CPTokenSource& source, CPPreprocessorFilter* node) {
    node->logErrorAtSource(source, qbmsg::NewLineExpected);
    int rc = cpSkipTo(source, node, CPT_NEWLINE, true);
    node->setErrorFlag(false);
    return rc == qbmsg::OutOfMemory ? rc : 0;
}

}  // namespace

// unit:
//     ( (directive | text-run) NEWLINE? )* EOF
CPPreprocessorUnit* cpParseUnit(CPTokenSource& source, int depth) {
    CPPreprocessorUnit* unit = new (std::nothrow) CPPreprocessorUnit;
    if (!unit) return nullptr;
    int rc = 0;
    while (rc == 0 && !cpAtEnd(source.currentType())) {
        rc = readItem(source, unit, depth);
        int kind = source.currentType();
        if (rc != 0 || cpAtEnd(kind)) break;
        rc = kind == CPT_NEWLINE ? cpTakeToken(source, unit) : recoverLine(source, unit);
    }
    if (rc == 0 && source.currentToken()) rc = cpTakeToken(source, unit);
    if (rc != 0) {
        delete unit;
        return nullptr;
    }
    return unit;
}

// text-run:
//     ( name-or-call | builtin | token )*      up to NEWLINE
CPPreprocessorPPTokens* cpParseText(CPTokenSource& source, int depth) {
    CPPreprocessorPPTokens* run = new (std::nothrow) CPPreprocessorPPTokens;
    if (!run) return nullptr;
    int rc = 0;
    for (int kind = source.currentType(); rc == 0 && !cpAtLineEnd(kind);
         kind = source.currentType()) {
        TBPToken<CPParseNodeType>* token = source.currentToken();
        if (cpTokenHas(kind, CPTK_DIRECTIVE))
            token->setType(CPT_IDENTIFIER);
        if (cpIsBuiltinKind(kind)) rc = cpAdoptChild(run, cpParseBuiltin(source));
        else if (cpIsIdentifierLike(token->getType()))
            rc = cpAdoptChild(run, cpParseMacroCall(source, depth, nullptr));
        else rc = cpTakeToken(source, run);
    }
    if (rc != 0) {
        delete run;
        return nullptr;
    }
    return run;
}

namespace {

// POUND keyword and the rest of the line, into node.
template <class Node>
Node* readPlainDirective(CPTokenSource& source) {
    Node* node = new (std::nothrow) Node;
    if (!node) return nullptr;
    if (cpTakeToken(source, node) || cpTakeToken(source, node) ||
        cpTakeRestOfLine(source, node)) {
        delete node;
        return nullptr;
    }
    return node;
}

CPPreprocessorFilter* readEmpty(CPTokenSource& source) {
    CPPreprocessorEmpty* node = new (std::nothrow) CPPreprocessorEmpty;
    if (node && cpTakeToken(source, node) != 0) {
        delete node;
        return nullptr;
    }
    return node;
}

// #line and #pragma need something behind the keyword.
template <class Node>
CPPreprocessorFilter* readDirectiveWithArguments(CPTokenSource& source, int missingCode) {
    Node* node = readPlainDirective<Node>(source);
    if (node && node->getChildCount() < 3) node->logErrorAtNode(node, missingCode);
    return node;
}

// Any character may stand in an #error message.
CPPreprocessorFilter* readErrorDirective(CPTokenSource& source) {
    CPPreprocessorError* node = new (std::nothrow) CPPreprocessorError;
    if (!node) return nullptr;
    int rc = cpTakeToken(source, node);
    if (rc == 0) rc = cpTakeToken(source, node);
    while (rc == 0 && !cpAtLineEnd(source.currentType())) {
        TBPToken<CPParseNodeType>* token = source.currentToken();
        if (token->getType() == CPT_GARBAGE_CHAR) token->clearErrors(false);
        rc = cpTakeToken(source, node);
    }
    if (rc != 0) {
        delete node;
        return nullptr;
    }
    return node;
}

// #include, #import and #using: POUND keyword argument, and for the latter two any tail.
template <class Node>
CPPreprocessorFilter* readIncludeLike(CPTokenSource& source, int depth, bool tailAllowed) {
    Node* node = new (std::nothrow) Node;
    if (!node) return nullptr;
    int rc = cpTakeToken(source, node);
    if (rc == 0) rc = cpTakeToken(source, node);
    CPPreprocessorIncludeArg* arg = rc == 0 ? cpParseIncludeArg(source, depth) : nullptr;
    if (rc == 0 && !arg) {
        node->logErrorAtSource(source, qbmsg::NameRequired);
    } else if (rc == 0) {
        rc = cpAdoptChild(node, arg);
    }
    if (rc == 0 && !tailAllowed && !cpAtLineEnd(source.currentType())) {
        TBPToken<CPParseNodeType>* extra = source.currentToken();
        node->logErrorAtSource(source, qbmsg::SyntaxError, extra->getSpellingConst());
    }
    if (rc == 0) rc = cpTakeRestOfLine(source, node);
    if (rc != 0) {
        delete node;
        return nullptr;
    }
    return node;
}

}  // namespace

namespace {

CPPreprocessorUnknown* readUnknown(CPTokenSource& source) {
    CPPreprocessorUnknown* node = new (std::nothrow) CPPreprocessorUnknown;
    if (node && (cpTakeToken(source, node) || cpTakeRestOfLine(source, node))) {
        delete node;
        return nullptr;
    }
    return node;
}

// A group opened too deep is kept as a line of tokens; its closing lines then stand alone.
CPPreprocessorUnknown* readTooDeep(CPTokenSource& source) {
    CPPreprocessorUnknown* node = readUnknown(source);
    if (node) node->logErrorAtNode(node, qbmsg::NestedTooDeeply);
    return node;
}

}  // namespace

CPPreprocessorFilter* cpParseDirective(CPTokenSource& source, int depth) {
    int word = source.peekType(1);
    switch (word) {
    case CPT_EOF:
    case CPT_EOS:
    case CPT_NEWLINE: return readEmpty(source);
    case CPT_kw_if:
    case CPT_kw_ifdef:
    case CPT_kw_ifndef:
        if (depth > CPPP_MAX_NESTING) return readTooDeep(source);
        return cpParseIfGroup(source, depth);
    case CPT_kw_elif:
    case CPT_kw_else:
    case CPT_kw_endif: return cpParseBranchDirective(source, depth);
    case CPT_kw_define: return cpParseDefine(source, depth);
    case CPT_kw_undef: return cpParseUndef(source, depth);
    case CPT_kw_include: return readIncludeLike<CPPreprocessorInclude>(source, depth, false);
    case CPT_kw_import: return readIncludeLike<CPPreprocessorImport>(source, depth, true);
    case CPT_kw_using: return readIncludeLike<CPPreprocessorUsing>(source, depth, true);
    case CPT_kw_line:
        return readDirectiveWithArguments<CPPreprocessorLine>(source, qbmsg::LineWithoutArguments);
    case CPT_kw_pragma:
        return readDirectiveWithArguments<CPPreprocessorPragma>(source, qbmsg::SyntaxError);
    case CPT_kw_error: return readErrorDirective(source);
    default: return readUnknown(source);
    }
}

// include-argument:
//     STRING | < tokens > | tokens to expand
CPPreprocessorIncludeArg* cpParseIncludeArg(CPTokenSource& source, int depth) {
    int kind = source.currentType();
    if (cpAtLineEnd(kind)) return nullptr;
    CPPreprocessorIncludeArg* arg = new (std::nothrow) CPPreprocessorIncludeArg;
    if (!arg) return nullptr;
    int rc = 0;
    if (kind == CPT_STRING || kind == CPT_WIDE_STRING) {
        rc = cpTakeToken(source, arg);
    } else if (kind == CPT_LT) {
        rc = cpTakeToken(source, arg);
        while (rc == 0 && !cpAtLineEnd(source.currentType()) && source.currentType() != CPT_GT)
            rc = cpTakeToken(source, arg);
        if (rc == 0 && source.currentType() == CPT_GT) rc = cpTakeToken(source, arg);
        else if (rc == 0)
            arg->logErrorAtSource(source, qbmsg::ExpectedToken, cpTokenSpelling(CPT_GT));
    } else {
        while (rc == 0 && !cpAtLineEnd(source.currentType())) {
            TBPToken<CPParseNodeType>* token = source.currentToken();
            int k = token->getType();
            if (cpTokenHas(k, CPTK_DIRECTIVE))
                token->setType(CPT_IDENTIFIER);
            if (cpIsIdentifierLike(token->getType()))
                rc = cpAdoptChild(arg, cpParseMacroCall(source, depth, nullptr));
            else rc = cpTakeToken(source, arg);
        }
    }
    if (rc != 0) {
        delete arg;
        return nullptr;
    }
    return arg;
}
