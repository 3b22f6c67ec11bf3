// Readers of #define, #undef and of macro calls. A body is read into nodes once: parameters
// become CPPreprocessorDefineArgument, `#x` a CPPreprocessorDefineString, `a ## b` a
// CPPreprocessorDefineConcat, and every other name a CPPreprocessorMacro, so that running the
// body later is already the rescan.
#include "CPPreprocessorReader.h"

#include "CPSymbolInfo.h"

using quernbase::QBString;

namespace {

typedef TBPToken<CPParseNodeType> Token;

bool isFormal(const CPFormalSet* formals, Token* token) {
    return formals && token && formals->contains(token->getSpellingConst());
}

CPPreprocessorDefineArgument* parseDefineArgument(CPTokenSource& source) {
    CPPreprocessorDefineArgument* node = new (std::nothrow) CPPreprocessorDefineArgument;
    if (!node) return nullptr;
    source.currentToken()->setType(CPT_IDENTIFIER);
    if (cpTakeToken(source, node) != 0) {
        delete node;
        return nullptr;
    }
    return node;
}

// #name, L#name, S#name
CPPreprocessorDefineString* parseDefineString(CPTokenSource& source, const CPFormalSet* formals) {
    CPPreprocessorDefineString* node = new (std::nothrow) CPPreprocessorDefineString;
    if (!node) return nullptr;
    int rc = cpTakeToken(source, node);
    Token* name = source.currentToken();
    bool named = rc == 0 && name && cpIsIdentifierLike(name->getType());
    if (named) {
        name->setType(CPT_IDENTIFIER);
        rc = cpTakeToken(source, node);
    }
    if (rc != 0) {
        delete node;
        return nullptr;
    }
    if (!named || !isFormal(formals, name)) node->logErrorAtNode(node, qbmsg::MissingParameterOrName);
    return node;
}

// One operand of ##: nothing (a null child), a parameter, a name or call, a builtin, a token.
int readConcatOperand(CPTokenSource& source, CPPreprocessorFilter* node, int depth,
                      const CPFormalSet* formals) {
    Token* token = source.currentToken();
    int kind = source.currentType();
    if (kind == CPT_POUND_POUND || cpAtLineEnd(kind)) return node->addChild(nullptr);
    if (cpIsIdentifierLike(kind) && isFormal(formals, token) && source.peekType(1) != CPT_LEFT_PAREN)
        return cpAdoptChild(node, parseDefineArgument(source));
    if (cpIsIdentifierLike(kind)) return cpAdoptChild(node, cpParseMacroCall(source, depth, formals));
    if (cpIsBuiltinKind(kind)) return cpAdoptChild(node, cpParseBuiltin(source));
    return cpTakeToken(source, node);
}

// concatenation:
//     operand ## operand ( ## operand )*
// An operand, or the concatenation it starts when ## follows it. The operand is read once and
// kept either way: reading a nested call, then dropping it to read it again, doubles the work
// at every level of nesting.
int readOperandOrConcat(CPTokenSource& source, CPPreprocessorFilter* into, int depth,
                        const CPFormalSet* formals) {
    if (cpAtLineEnd(source.currentType())) return cpTakeToken(source, into);
    CPPreprocessorDefineConcat* node = new (std::nothrow) CPPreprocessorDefineConcat;
    if (!node) return qbmsg::OutOfMemory;
    int rc = readConcatOperand(source, node, depth, formals);
    if (rc == 0 && source.currentType() != CPT_POUND_POUND) {
        rc = into->addChild(node->getChild(0));
        delete node;
        return rc;
    }
    while (rc == 0 && source.currentType() == CPT_POUND_POUND) {
        rc = cpTakeToken(source, node);
        if (rc == 0) rc = readConcatOperand(source, node, depth, formals);
    }
    if (rc != 0) {
        delete node;
        return rc;
    }
    return cpAdoptChild(into, node);
}

// The end of an argument: a body ends with its line, a text run only with the file.
bool argumentEnds(int kind, const CPFormalSet* formals) {
    return cpAtEnd(kind) || (formals && kind == CPT_NEWLINE);
}

// A `#` inside an argument: a stringized parameter in a body, an error anywhere else.
int readArgumentPound(CPTokenSource& source, CPPreprocessorMacroArgument* arg,
                      const CPFormalSet* formals, bool& stop) {
    if (formals && source.mark() == 0) {
        source.nextToken();
        bool parameter = isFormal(formals, source.currentToken());
        source.rollback();
        if (parameter) return cpAdoptChild(arg, parseDefineString(source, formals));
    }
    arg->logErrorAtSource(source, qbmsg::NameRequired);
    stop = true;
    return 0;
}

// argument:
//     balanced tokens up to a COMMA or RIGHT_PAREN outside parentheses
CPPreprocessorMacroArgument* parseMacroArgument(CPTokenSource& source, int depth,
                                                const CPFormalSet* formals) {
    CPPreprocessorMacroArgument* arg = new (std::nothrow) CPPreprocessorMacroArgument;
    if (!arg) return nullptr;
    int open = 0, rc = 0;
    bool stop = false;
    // Too deep for more nested calls: the argument is plain tokens (its call warns).
    bool plain = depth > CPPP_MAX_NESTING;
    while (rc == 0 && !stop) {
        int kind = source.currentType();
        if (argumentEnds(kind, formals)) {
            if (open > 0)
                arg->logErrorAtSource(source, qbmsg::ExpectedToken, cpTokenSpelling(CPT_RIGHT_PAREN));
            break;
        }
        if ((kind == CPT_RIGHT_PAREN || kind == CPT_COMMA) && open == 0) break;
        if (kind == CPT_LEFT_PAREN) ++open;
        if (kind == CPT_RIGHT_PAREN) --open;
        if (plain) rc = cpTakeToken(source, arg);
        else if (kind == CPT_POUND) rc = readArgumentPound(source, arg, formals, stop);
        else rc = readOperandOrConcat(source, arg, depth, formals);
    }
    if (rc != 0) {
        delete arg;
        return nullptr;
    }
    return arg;
}

// A header declares a field of this name on a line of its own; the line gives no output.
bool swallowsLine(Token* name) {
    return name->getSpellingConst() == "_VARIANT_BOOL" && name->isFirstOnLine();
}

int swallowLine(CPTokenSource& source, CPPreprocessorMacro* call, uint32_t line) {
    for (Token* t = source.currentToken(); t && !cpAtLineEnd(t->getType()) && t->getLine() == line;
         t = source.currentToken())
        if (int rc = cpTakeToken(source, call)) return rc;
    return 0;
}

// ( argument ( , argument )* ) after the name; false when there is no balanced list.
bool readArguments(CPTokenSource& source, CPPreprocessorMacro* call, int depth,
                   const CPFormalSet* formals, int& rc) {
    rc = cpTakeToken(source, call);
    while (rc == 0) {
        int kind = source.currentType();
        if (kind == CPT_RIGHT_PAREN || cpAtEnd(kind) || (formals && kind == CPT_NEWLINE)) break;
        CPPreprocessorMacroArgument* arg = parseMacroArgument(source, depth + 1, formals);
        rc = cpAdoptChild(call, arg);
        if (rc != 0 || arg->hasError() || source.currentType() != CPT_COMMA) break;
        rc = cpTakeToken(source, call);
    }
    if (rc != 0 || source.currentType() != CPT_RIGHT_PAREN) return false;
    rc = cpTakeToken(source, call);
    return rc == 0;
}

}  // namespace

// macro-call:
//     name ( ( argument ( , argument )* )? )?
CPPreprocessorMacro* cpParseMacroCall(CPTokenSource& source, int depth,
                                      const CPFormalSet* formals) {
    Token* name = source.currentToken();
    if (!name || !cpIsIdentifierLike(name->getType())) return nullptr;
    CPPreprocessorMacro* call = new (std::nothrow) CPPreprocessorMacro;
    if (!call) return nullptr;
    int rc = isFormal(formals, name) ? cpAdoptChild(call, parseDefineArgument(source))
                                     : cpTakeToken(source, call);
    if (rc == 0 && swallowsLine(name)) rc = swallowLine(source, call, name->getLine());
    else if (rc == 0 && source.currentType() == CPT_LEFT_PAREN && source.mark() == 0) {
        if (readArguments(source, call, depth, formals, rc)) {
            source.commit();
            // A warning, not an error: an error would make every enclosing call let go of its
            // arguments and read them again.
            if (depth + 1 > CPPP_MAX_NESTING) call->logWarningAtNode(name, qbmsg::NestedTooDeeply);
        } else {
            // Not a call after all: the name stands alone and the rest is read again.
            if (call->getChildCount() > 1) call->removeChildren(1, call->getChildCount() - 1);
            call->clearErrors(true);
            source.rollback();
            rc = rc == qbmsg::OutOfMemory ? rc : 0;
        }
    }
    if (rc != 0) {
        delete call;
        return nullptr;
    }
    return call;
}

namespace {

// body:
//     ( # param | concatenation | param | call | builtin | token )*     up to the line end
CPPreprocessorDefineBody* parseDefineBody(CPTokenSource& source, int depth,
                                          const CPFormalSet* formals) {
    if (cpAtLineEnd(source.currentType())) return nullptr;
    CPPreprocessorDefineBody* body = new (std::nothrow) CPPreprocessorDefineBody;
    if (!body) return nullptr;
    int rc = 0;
    for (int kind = source.currentType(); rc == 0 && !cpAtLineEnd(kind);
         kind = source.currentType()) {
        Token* token = source.currentToken();
        if (kind == CPT_GARBAGE_CHAR) {
            token->clearErrors(false);
            body->logWarningAtSource(source, qbmsg::StrayCharacter);
            rc = cpTakeToken(source, body);
            continue;
        }
        if (kind == CPT_POUND) {
            rc = cpAdoptChild(body, parseDefineString(source, formals));
            continue;
        }
        rc = readOperandOrConcat(source, body, depth, formals);
    }
    if (rc != 0) {
        delete body;
        return nullptr;
    }
    return body;
}

// A parameter is a symbol of the define's own scope, so that renaming it finds its uses.
int addParameterSymbol(CPPreprocessorDefine* define, Token* token) {
    CPSymbolInfo* symbol = new (std::nothrow) CPSymbolInfo(token->getSpellingConst(), nullptr, define);
    if (!symbol) return qbmsg::OutOfMemory;
    symbol->addRef();
    int rc = symbol->addReference(token);
    if (rc == 0) rc = define->addSymbol(symbol);
    symbol->release();
    return rc < 0 ? qbmsg::OutOfMemory : 0;
}

int addFormal(CPTokenSource& source, CPPreprocessorDefine* define, CPFormalSet& formals) {
    Token* token = source.currentToken();
    token->setType(CPT_IDENTIFIER);
    QBString name = token->getSpellingConst();
    if (formals.contains(name)) define->logErrorAtSource(source, qbmsg::DuplicateParameter, name);
    if (int rc = formals.set(name, 1)) return rc;
    if (int rc = addParameterSymbol(define, token)) return rc;
    return cpTakeToken(source, define);
}

// Each use of a parameter in the body (x and #x) becomes a reference of its symbol.
int noteParameterUses(CPPreprocessorDefine* define, TBPParseNode<CPParseNodeType>* node) {
    if (!node || !node->isTree()) return 0;
    int kind = node->getType();
    unsigned at = kind == CPN_PreprocessorDefineArg ? 0 : kind == CPN_PreprocessorDefineString ? 1 : 2;
    Token* use = at < 2 && node->getChild(at) && node->getChild(at)->isToken()
                     ? static_cast<Token*>(node->getChild(at))
                     : nullptr;
    if (use) {
        auto* list = define->findSymbolList(use->getSpellingConst());
        if (list && list->count() == 1) return (*list)[0]->addReference(use) < 0 ? qbmsg::OutOfMemory : 0;
        return 0;
    }
    for (unsigned i = 0; i < node->getChildCount(); ++i)
        if (int rc = noteParameterUses(define, node->getChild(i))) return rc;
    return 0;
}

// ( NAME ( , NAME )* ( , ... | ... )? ) with the `name...` form; false after a logged error.
bool readParameters(CPTokenSource& source, CPPreprocessorDefine* define, CPFormalSet& formals,
                    int& rc) {
    rc = cpTakeToken(source, define);
    while (rc == 0 && cpIsIdentifierLike(source.currentType())) {
        rc = addFormal(source, define, formals);
        if (rc == 0 && source.currentType() == CPT_ELLIPSE && source.peekType(1) == CPT_RIGHT_PAREN)
            rc = cpTakeToken(source, define);
        if (rc != 0 || source.currentType() != CPT_COMMA) break;
        rc = cpTakeToken(source, define);
        if (rc != 0 || source.currentType() == CPT_ELLIPSE) break;
        if (!cpIsIdentifierLike(source.currentType()))
            define->logErrorAtSource(source, qbmsg::NameRequired);
    }
    if (rc == 0 && source.currentType() == CPT_ELLIPSE) {
        rc = cpTakeToken(source, define);
        if (rc == 0) rc = formals.set(QBString("__VA_ARGS__"), 1);
    }
    if (rc != 0) return false;
    if (source.currentType() == CPT_RIGHT_PAREN) {
        rc = cpTakeToken(source, define);
        return rc == 0;
    }
    define->logErrorAtSource(source, qbmsg::ExpectedToken, cpTokenSpelling(CPT_RIGHT_PAREN));
    rc = cpTakeRestOfLine(source, define);
    return false;
}

bool adjacent(Token* name, Token* next) {
    return next && next->getWhitespaceCount() == 0 &&
           next->getSeekPosition() == name->getSeekPosition() + name->getLength();
}

}  // namespace

// define:
//     # define NAME ( "(" parameters ")" )? body?
CPPreprocessorDefine* cpParseDefine(CPTokenSource& source, int depth) {
    CPPreprocessorDefine* define = new (std::nothrow) CPPreprocessorDefine;
    if (!define) return nullptr;
    int rc = cpTakeToken(source, define);
    if (rc == 0) rc = cpTakeToken(source, define);
    Token* name = source.currentToken();
    if (rc == 0 && (!name || !(cpIsIdentifierLike(name->getType()) || cpIsBuiltinKind(name->getType())))) {
        define->logErrorAtSource(source, qbmsg::NameRequired);
        rc = cpTakeRestOfLine(source, define);
        if (rc == 0) return define;
    }
    CPFormalSet formals(QBString::hashString);
    bool complete = true;
    if (rc == 0) {
        name->setType(CPT_IDENTIFIER);
        rc = cpTakeToken(source, define);
    }
    if (rc == 0 && source.currentType() == CPT_LEFT_PAREN && adjacent(name, source.currentToken()))
        complete = readParameters(source, define, formals, rc);
    if (rc == 0 && complete) {
        CPPreprocessorDefineBody* body = parseDefineBody(source, depth, &formals);
        if (!body && !cpAtLineEnd(source.currentType())) rc = qbmsg::OutOfMemory;
        else if (define->addChild(body) != 0) {
            delete body;
            rc = qbmsg::OutOfMemory;
        } else if (body && formals.count() > 0) {
            rc = noteParameterUses(define, body);
        }
    }
    if (rc != 0) {
        delete define;
        return nullptr;
    }
    return define;
}

// undef:
//     # undef NAME
CPPreprocessorUndef* cpParseUndef(CPTokenSource& source, int) {
    CPPreprocessorUndef* node = new (std::nothrow) CPPreprocessorUndef;
    if (!node) return nullptr;
    if (cpReadNamedDirective(source, node, false) != 0) {
        delete node;
        return nullptr;
    }
    return node;
}
