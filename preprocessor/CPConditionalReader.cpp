// Readers of conditional groups. Nothing is skipped while reading: every branch becomes a body
// of the group, and only running the tree chooses one.
#include "CPPreprocessorReader.h"

using quernbase::QBString;

namespace {

typedef TBPToken<CPParseNodeType> Token;

bool isBranchWord(int kind) {
    return kind == CPT_kw_elif || kind == CPT_kw_else || kind == CPT_kw_endif;
}

// `defined NAME` or `defined ( NAME )`: the name is kept raw, never a macro call.
int readDefined(CPTokenSource& source, CPPreprocessorIfExpression* expr) {
    int rc = cpTakeToken(source, expr);
    auto isName = [](int k) { return cpIsIdentifierLike(k) || cpIsBuiltinKind(k); };
    int kind = source.currentType();
    if (rc != 0) return rc;
    if (kind != CPT_LEFT_PAREN) {
        if (isName(kind)) return cpTakeToken(source, expr);
        expr->logErrorAtSource(source, qbmsg::ExpectedToken, cpTokenSpelling(CPT_LEFT_PAREN));
        return 0;
    }
    rc = cpTakeToken(source, expr);
    if (rc == 0 && isName(source.currentType())) rc = cpTakeToken(source, expr);
    else if (rc == 0) expr->logErrorAtSource(source, qbmsg::NameRequired);
    kind = source.currentType();
    if (rc != 0 || cpAtLineEnd(kind)) return rc;
    if (kind == CPT_RIGHT_PAREN) return cpTakeToken(source, expr);
    expr->logErrorAtSource(source, qbmsg::ExpectedToken, cpTokenSpelling(CPT_RIGHT_PAREN));
    return 0;
}

// if-expression:
//     ( defined-name | builtin | name-or-call | token )+      up to the line end
CPPreprocessorIfExpression* parseIfExpression(CPTokenSource& source, int depth) {
    if (cpAtLineEnd(source.currentType())) return nullptr;
    CPPreprocessorIfExpression* expr = new (std::nothrow) CPPreprocessorIfExpression;
    if (!expr) return nullptr;
    int rc = 0;
    for (int kind = source.currentType(); rc == 0 && !cpAtLineEnd(kind);
         kind = source.currentType()) {
        if (kind == CPT_kw_defined) rc = readDefined(source, expr);
        else if (cpIsBuiltinKind(kind)) rc = cpAdoptChild(expr, cpParseBuiltin(source));
        else if (cpIsIdentifierLike(kind)) {
            // Keywords are names here, apart from the two that are values.
            if (kind != CPT_kw_true && kind != CPT_kw_false)
                source.currentToken()->setType(CPT_IDENTIFIER);
            if (source.currentType() == CPT_IDENTIFIER)
                rc = cpAdoptChild(expr, cpParseMacroCall(source, depth, nullptr));
            else rc = cpTakeToken(source, expr);
        } else rc = cpTakeToken(source, expr);
    }
    if (rc != 0) {
        delete expr;
        return nullptr;
    }
    return expr;
}

// # if expression, # elif expression?
template <class Node>
Node* parseConditionDirective(CPTokenSource& source, int depth, bool required) {
    Node* node = new (std::nothrow) Node;
    if (!node) return nullptr;
    int rc = cpTakeToken(source, node);
    if (rc == 0) rc = cpTakeToken(source, node);
    CPPreprocessorIfExpression* expr = rc == 0 ? parseIfExpression(source, depth) : nullptr;
    if (rc == 0 && expr) rc = cpAdoptChild(node, expr);
    else if (rc == 0 && required) node->logErrorAtSource(source, qbmsg::SyntaxError);
    else if (rc == 0) rc = node->addChild(nullptr);
    if (rc == 0) rc = cpTakeRestOfLine(source, node);
    if (rc != 0) {
        delete node;
        return nullptr;
    }
    return node;
}

// # ifdef NAME, # ifndef NAME
template <class Node>
Node* parseNameCondition(CPTokenSource& source) {
    Node* node = new (std::nothrow) Node;
    if (!node) return nullptr;
    if (cpReadNamedDirective(source, node, true) != 0) {
        delete node;
        return nullptr;
    }
    return node;
}

// # else, # endif NAME*: tokens behind are kept; warned of behind #else, and behind #endif
// only from three on, as `#endif NAME` is common.
template <class Node>
Node* parseClosingDirective(CPTokenSource& source, unsigned allowedTail) {
    Node* node = new (std::nothrow) Node;
    if (!node) return nullptr;
    int rc = cpTakeToken(source, node);
    if (rc == 0) rc = cpTakeToken(source, node);
    Token* first = source.currentToken();
    QBString firstText = first ? first->getSpellingConst() : QBString("");
    if (rc == 0) rc = cpTakeRestOfLine(source, node);
    if (rc != 0) {
        delete node;
        return nullptr;
    }
    if (node->getChildCount() > 2 + allowedTail)
        node->logWarningAtNode(node->getChild(2), qbmsg::UnexpectedToken, firstText);
    return node;
}

CPPreprocessorFilter* parseOpening(CPTokenSource& source, int depth) {
    switch (source.peekType(1)) {
    case CPT_kw_if: return parseConditionDirective<CPPreprocessorIf>(source, depth, true);
    case CPT_kw_ifdef: return parseNameCondition<CPPreprocessorIfdef>(source);
    default: return parseNameCondition<CPPreprocessorIfndef>(source);
    }
}

// The NEWLINE behind a directive of the group.
int takeNewline(CPTokenSource& source, CPPreprocessorFilter* group) {
    if (source.currentType() == CPT_NEWLINE) return cpTakeToken(source, group);
    group->logErrorAtSource(source, qbmsg::NewLineExpected);
    return 0;
}

bool branchAhead(CPTokenSource& source, int word) {
    return source.currentType() == CPT_POUND && source.peekType(1) == word;
}

// if-body:
//     ( (directive | text-run) NEWLINE )*     up to # elif, # else, # endif or EOF
CPPreprocessorIfBody* parseIfBody(CPTokenSource& source, int depth) {
    CPPreprocessorIfBody* body = new (std::nothrow) CPPreprocessorIfBody;
    if (!body) return nullptr;
    int rc = 0;
    while (rc == 0) {
        int kind = source.currentType();
        if (cpAtEnd(kind)) break;
        if (kind == CPT_POUND && isBranchWord(source.peekType(1))) break;
        rc = cpAdoptChild(body, kind == CPT_POUND ? cpParseDirective(source, depth)
                                           : cpParseText(source, depth));
        kind = source.currentType();
        if (rc != 0 || cpAtEnd(kind)) break;
        if (kind == CPT_NEWLINE) {
            rc = cpTakeToken(source, body);
            continue;
        }
        body->logErrorAtSource(source, qbmsg::NewLineExpected);
        rc = cpSkipTo(source, body, CPT_NEWLINE, true) == qbmsg::OutOfMemory ? qbmsg::OutOfMemory : 0;
        break;
    }
    if (rc != 0) {
        delete body;
        return nullptr;
    }
    return body;
}

int readBranch(CPTokenSource& source, CPPreprocessorIfGroup* group, CPPreprocessorFilter* opener,
               int depth) {
    int rc = cpAdoptChild(group, opener);
    if (rc == 0) rc = takeNewline(source, group);
    if (rc == 0) rc = cpAdoptChild(group, parseIfBody(source, depth + 1));
    return rc;
}

}  // namespace

// if-group:
//     opener NEWLINE body ( #elif NEWLINE body )* ( #else NEWLINE body )? #endif
CPPreprocessorIfGroup* cpParseIfGroup(CPTokenSource& source, int depth) {
    CPPreprocessorIfGroup* group = new (std::nothrow) CPPreprocessorIfGroup;
    if (!group) return nullptr;
    int rc = readBranch(source, group, parseOpening(source, depth), depth);
    while (rc == 0 && branchAhead(source, CPT_kw_elif))
        rc = readBranch(source, group,
                        parseConditionDirective<CPPreprocessorElif>(source, depth, false), depth);
    if (rc == 0 && branchAhead(source, CPT_kw_else))
        rc = readBranch(source, group, parseClosingDirective<CPPreprocessorElse>(source, 0),
                        depth);
    if (rc == 0 && branchAhead(source, CPT_kw_endif)) {
        rc = cpAdoptChild(group, parseClosingDirective<CPPreprocessorEndif>(source, 2));
    } else if (rc == 0) {
        rc = group->addChild(nullptr);
        group->logErrorAtSource(source, qbmsg::ExpectedToken, "#endif");
    }
    if (rc != 0) {
        delete group;
        return nullptr;
    }
    return group;
}

// A stand-alone #elif, #else or #endif (the caller has logged that no group is open).
CPPreprocessorFilter* cpParseBranchDirective(CPTokenSource& source, int depth) {
    switch (source.peekType(1)) {
    case CPT_kw_elif: return parseConditionDirective<CPPreprocessorElif>(source, depth, false);
    case CPT_kw_else: return parseClosingDirective<CPPreprocessorElse>(source, 0);
    default: return parseClosingDirective<CPPreprocessorEndif>(source, 2);
    }
}
