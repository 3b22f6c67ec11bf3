// Type specifiers: the built-in keywords with their compatibility masks, user-defined type
// names, elaborated forms, `typename` and `__typeof`. The class name is the one place where the
// grammar asks the declared-name table: inside a statement a name known as a value isn't a type.
#include "CPClasses.h"
#include "CPExpressions.h"
#include "CPGrammar.h"

using quernbase::QBString;

bool CPTypeSpecifier::isSyncToken(CPParseNodeType t) const {
    if (cpIsBuiltinTypeKeyword(t) || t == CPT_kw_const || t == CPT_kw_volatile) return false;
    if (declSpecifiers && (t == CPT_kw_auto || t == CPT_kw_register || t == CPT_kw_static ||
                           t == CPT_kw_extern || t == CPT_kw_mutable || t == CPT_kw_inline ||
                           t == CPT_kw_virtual || t == CPT_kw_explicit))
        return false;
    return true;
}

namespace cpgrammar {

namespace {

struct BuiltinBits {
    CPParseNodeType keyword;
    uint32_t bit;
    uint32_t rejectMask;
};

const BuiltinBits kBuiltins[] = {
    {CPT_kw_char, 0x1, 0x3ff},    {CPT_kw_bool, 0x2, 0xfff},   {CPT_kw_int, 0x4, 0x3c7},
    {CPT_kw_long, 0x8, 0x2f3},    {CPT_kw_short, 0x20, 0x3fb}, {CPT_kw_wchar_t, 0x40, 0xfff},
    {CPT_kw_float, 0x80, 0xfff},  {CPT_kw_double, 0x100, 0xff7}, {CPT_kw_void, 0x200, 0xfff},
    {CPT_kw_signed, 0x400, 0xfc2}, {CPT_kw_unsigned, 0x800, 0xfc2},
};

const BuiltinBits* builtinOf(CPParseNodeType t) {
    for (const BuiltinBits& entry : kBuiltins)
        if (entry.keyword == t) return &entry;
    return nullptr;
}

bool isDeclKeyword(CPParseNodeType t) {
    return t == CPT_kw_auto || t == CPT_kw_explicit || t == CPT_kw_extern || t == CPT_kw_inline ||
           t == CPT_kw_mutable || t == CPT_kw_register || t == CPT_kw_static || t == CPT_kw_virtual;
}

// The cv-qualifiers at the current token; a repeat of const or volatile is a warning.
CPParseTree* readCV(CPParseContext& ctx, CPTypeSpecifier* node, bool& constSeen, bool& volatileSeen) {
    CPCVQualifierSequence* sequence = make<CPCVQualifierSequence>();
    if (!sequence) return nullptr;
    for (CPParseNodeType t = ctx.type(); t == CPT_kw_const || t == CPT_kw_volatile || t == CPT_kw_restrict;
         t = ctx.type()) {
        bool* seen = t == CPT_kw_const ? &constSeen : t == CPT_kw_volatile ? &volatileSeen : nullptr;
        if (seen && *seen) node->logWarningAtSource(ctx.source, qbmsg::RepeatedQualifier, ctx.currentText());
        if (seen) *seen = true;
        CPCVQualifier* qualifier = make<CPCVQualifier>();
        if (!qualifier) break;
        ctx.take(qualifier);
        sequence->addChild(qualifier);
    }
    if (sequence->getChildCount() > 0) return sequence;
    cpFree(sequence);
    return nullptr;
}

// A specifier other than a built-in keyword, by the first token.
CPParseTree* otherSpecifier(CPParseContext& ctx, unsigned flags, bool simpleSeen) {
    CPParseNodeType t = ctx.type();
    bool free = !simpleSeen;
    switch (t) {
    case CPT_kw_class: case CPT_kw_struct: case CPT_kw_union:
        if (!free) return nullptr;
        if (CPParseTree* body = parseClassSpecifier(ctx, flags)) return body;
        return parseElaborated(ctx, flags | CPPARSE_TEMPLATE_NAME_OK);
    case CPT_kw_enum:
        if (!free) return nullptr;
        if (CPParseTree* body = parseEnumSpecifier(ctx, flags)) return body;
        return parseElaborated(ctx, flags);
    case CPT_kw_typename: return free ? parseElaborated(ctx, flags) : nullptr;
    case CPT_kw___typeof: return free ? parseTypeof(ctx, flags) : nullptr;
    default:
        if (simpleSeen || (flags & CPPARSE_BUILTIN_TYPE_ONLY)) return nullptr;
        if (CPParseTree* user = parseUserDefinedType(ctx, flags)) return user;
        if (CPParseTree* user = parseUserDefinedTemplate(ctx, flags)) return user;
        return parseElaborated(ctx, flags);
    }
}

// After a rejected keyword: the type (and storage) keywords behind it are kept as children.
CPParseTree* rejectBuiltin(CPParseContext& ctx, CPTypeSpecifier* node) {
    node->logErrorAtSource(ctx.source, qbmsg::SyntaxError, ctx.currentText());
    return ctx.bail(node);
}

}  // namespace

// type-specifier:
//     ( cv-qualifier | simple-type-specifier | class-specifier | enum-specifier
//       | elaborated-type-specifier | __typeof-specifier | decl-keyword )+
CPParseTree* parseTypeSpecifier(CPParseContext& ctx, unsigned flags) {
    CPDepthGuard guard(ctx);
    if (guard.refused()) return nullptr;
    CPTypeSpecifier* node = make<CPTypeSpecifier>();
    if (!node) return nullptr;
    node->declSpecifiers = flags & CPPARSE_DECL_SPECIFIERS;
    ctx.mark();
    bool typeRead = false, constSeen = false, volatileSeen = false;
    for (;;) {
        bool simpleSeen = (flags & CPPARSE_TYPE_SEEN) || node->simpleTypeBits != 0;
        CPParseNodeType t = ctx.type();
        if ((flags & CPPARSE_DECL_SPECIFIERS) && isDeclKeyword(t)) {
            ctx.take(node);
            continue;
        }
        CPParseTree* part = nullptr;
        if (t == CPT_kw_const || t == CPT_kw_volatile || t == CPT_kw_restrict) {
            part = readCV(ctx, node, constSeen, volatileSeen);
        } else if (const BuiltinBits* builtin = builtinOf(t)) {
            if (typeRead) break;
            uint32_t bit = t == CPT_kw_long && (node->simpleTypeBits & 0x8) ? 0x10 : builtin->bit;
            if (node->simpleTypeBits & builtin->rejectMask) return rejectBuiltin(ctx, node);
            if ((part = make<CPSimpleType>())) ctx.take(part);
            node->simpleTypeBits |= bit;
        } else if (!typeRead) {
            part = otherSpecifier(ctx, flags, simpleSeen);
            typeRead = part != nullptr;
        }
        if (!part) break;
        node->addChild(part);
    }
    if (node->getChildCount() == 0) return ctx.rollback(node);
    return ctx.commit(node);
}

namespace {

// class-key ::? nested-name-specifier? class-name, as a forward or elaborated class.
CPParseTree* classReference(CPParseContext& ctx, unsigned flags, bool forward) {
    CPParseTree* node = forward ? static_cast<CPParseTree*>(make<CPForwardClassSpecifier>())
                                : make<CPElaboratedClassSpecifier>();
    if (!node) return nullptr;
    bool isUnion = ctx.at(CPT_kw_union);
    ctx.mark();
    ctx.take(node);
    if (!ctx.accept(node, CPT_COLON_COLON)) node->addChild(nullptr);
    node->addChild(parseNestedNameSpecifier(ctx, 0));
    unsigned nameFlags = (flags & CPPARSE_TEMPLATE_NAME_OK) ? 0u : unsigned(CPPARSE_NO_TEMPLATE_ID);
    CPParseTree* name = parseClassName(ctx, nameFlags);
    if (!name) return ctx.rollback(node);
    node->addChild(name);
    bool stands = ctx.at(CPT_SEMICOLON) || (ctx.at(CPT_EOF) && (flags & CPPARSE_CONVERSION_OK));
    if (forward && !stands) return ctx.rollback(node);
    QBString text;
    cpSpelledName(name, text);
    cpNoteName(ctx.names, text, isUnion ? CPNAME_UNION : CPNAME_CLASS);
    return ctx.commit(node);
}

// enum ::? nested-name-specifier? identifier
CPParseTree* enumReference(CPParseContext& ctx) {
    CPElaboratedEnumSpecifier* node = make<CPElaboratedEnumSpecifier>();
    if (!node) return nullptr;
    ctx.mark();
    ctx.take(node);
    if (!ctx.accept(node, CPT_COLON_COLON)) node->addChild(nullptr);
    node->addChild(parseNestedNameSpecifier(ctx, 0));
    CPParseTree* name = parseIdentifier(ctx, 0);
    if (!name) return ctx.rollback(node);
    node->addChild(name);
    QBString text;
    cpSpelledName(name, text);
    cpNoteName(ctx.names, text, CPNAME_ENUM);
    return ctx.commit(node);
}

}  // namespace

// elaborated-type-specifier:
//     class-key ::? nested-name-specifier? class-name | enum ::? nested-name-specifier? identifier
//     | typename-specifier
CPParseTree* parseElaborated(CPParseContext& ctx, unsigned flags) {
    switch (ctx.type()) {
    case CPT_kw_class: case CPT_kw_struct: case CPT_kw_union:
        if (CPParseTree* forward = classReference(ctx, flags, true)) return forward;
        return classReference(ctx, flags, false);
    case CPT_kw_enum: return enumReference(ctx);
    case CPT_kw_typename: return parseTypenameSpecifier(ctx, flags);
    default: return nullptr;
    }
}

// typename-specifier:
//     typename ::? nested-name-specifier? template? ( template-id | identifier )
CPParseTree* parseTypenameSpecifier(CPParseContext& ctx, unsigned) {
    if (!ctx.at(CPT_kw_typename)) return nullptr;
    CPTypenameTypeSpecifier* node = make<CPTypenameTypeSpecifier>();
    if (!node) return nullptr;
    ctx.mark();
    ctx.take(node);
    if (!ctx.accept(node, CPT_COLON_COLON)) node->addChild(nullptr);
    node->addChild(parseNestedNameSpecifier(ctx, 0));
    if (!ctx.accept(node, CPT_kw_template)) node->addChild(nullptr);
    CPParseTree* name = parseTemplateId(ctx, CPPARSE_OPTIONAL);
    if (!name) name = parseIdentifier(ctx, 0);
    if (!name) return ctx.rollback(node);
    node->addChild(name);
    return ctx.commit(node);
}

// __typeof-specifier:
//     __typeof ( ( unary-expression | type-id ) )
CPParseTree* parseTypeof(CPParseContext& ctx, unsigned) {
    CPTypeofTypeSpecifier* node = make<CPTypeofTypeSpecifier>();
    if (!node) return nullptr;
    ctx.mark();
    ctx.take(node);
    if (!ctx.expect(node, CPT_LEFT_PAREN)) return ctx.bail(node);
    ctx.mark();
    CPParseTree* operand = parseUnary(ctx, 0);
    if (operand && !ctx.at(CPT_RIGHT_PAREN)) {
        ctx.rollback(operand);
        ctx.mark();
        operand = nullptr;
    }
    if (!operand) operand = parseTypeId(ctx, 0);
    ctx.source.commit();
    if (!ctx.require(node, operand)) return ctx.bail(node);
    if (!ctx.expect(node, CPT_RIGHT_PAREN)) return ctx.bail(node);
    return ctx.commit(node);
}

namespace {

// The quick test of qualified type names: `__typeof`, `::`, or a name with `::` or `<` behind.
bool mayBeQualified(CPParseContext& ctx) {
    CPParseNodeType t = ctx.type();
    if (t == CPT_kw___typeof || t == CPT_COLON_COLON) return true;
    CPParseNodeType next = ctx.peek(1);
    return next == CPT_COLON_COLON || next == CPT_LT;
}

}  // namespace

// simple-type-specifier (user-defined):
//     ::? nested-name-specifier? type-name
CPParseTree* parseUserDefinedType(CPParseContext& ctx, unsigned flags) {
    CPUserDefinedTypeSpecifier* node = make<CPUserDefinedTypeSpecifier>();
    if (!node) return nullptr;
    ctx.mark();
    if (!ctx.accept(node, CPT_COLON_COLON)) node->addChild(nullptr);
    node->addChild(parseNestedNameSpecifier(ctx, flags));
    CPParseTree* name = parseTypeName(ctx, flags);
    if (!name) return ctx.rollback(node);
    node->addChild(name);
    return ctx.commit(node);
}

// simple-type-specifier (template):
//     ::? nested-name-specifier template template-id
CPParseTree* parseUserDefinedTemplate(CPParseContext& ctx, unsigned flags) {
    if (!mayBeQualified(ctx)) return nullptr;
    CPUserDefinedTemplateSpecifier* node = make<CPUserDefinedTemplateSpecifier>();
    if (!node) return nullptr;
    ctx.mark();
    if (!ctx.accept(node, CPT_COLON_COLON)) node->addChild(nullptr);
    CPParseTree* nested = parseNestedNameSpecifier(ctx, flags);
    if (!nested) return ctx.rollback(node);
    node->addChild(nested);
    if (!ctx.accept(node, CPT_kw_template)) return ctx.rollback(node);
    CPParseTree* id = parseTemplateId(ctx, 0);
    if (!id) return ctx.rollback(node);
    node->addChild(id);
    return ctx.commit(node);
}

// type-name:
//     class-name
CPParseTree* parseTypeName(CPParseContext& ctx, unsigned flags) {
    CPParseTree* name = parseClassName(ctx, flags);
    if (!name) return nullptr;
    CPTypeName* node = make<CPTypeName>();
    if (!node) {
        cpFree(name);
        return nullptr;
    }
    node->addChild(name);
    return node;
}

// class-name:
//     template-id | identifier
CPParseTree* parseClassName(CPParseContext& ctx, unsigned flags) {
    if ((flags & CPPARSE_REJECT_VALUE_NAMES) && ctx.at(CPT_IDENTIFIER)) {
        const int* kind = ctx.names.find(ctx.source.currentToken()->getSpelling());
        if (kind && *kind >= 12 && *kind < 16) return nullptr;
    }
    CPParseTree* name = (flags & CPPARSE_NO_TEMPLATE_ID) ? nullptr : parseTemplateId(ctx, CPPARSE_OPTIONAL);
    if (!name) name = parseIdentifier(ctx, 0);
    if (!name) return nullptr;
    CPClassName* node = make<CPClassName>();
    if (!node) {
        cpFree(name);
        return nullptr;
    }
    node->addChild(name);
    return node;
}

// nested-name-specifier:
//     class-name :: ( template nested-name-specifier | nested-name-specifier? )
CPParseTree* parseNestedNameSpecifier(CPParseContext& ctx, unsigned flags) {
    if (!mayBeQualified(ctx) || ctx.at(CPT_COLON_COLON)) return nullptr;
    CPDepthGuard guard(ctx);
    if (guard.refused()) return nullptr;
    CPNestedNameSpecifier* node = make<CPNestedNameSpecifier>();
    if (!node) return nullptr;
    ctx.mark();
    CPParseTree* name = parseClassName(ctx, flags & ~unsigned(CPPARSE_REJECT_VALUE_NAMES));
    if (!name || !ctx.at(CPT_COLON_COLON)) {
        cpFree(name);
        return ctx.rollback(node);
    }
    node->addChild(name);
    ctx.take(node);
    CPParseTree* inner = nullptr;
    if (ctx.at(CPT_kw_template)) {
        ctx.mark();
        ctx.take(node);
        inner = parseNestedNameSpecifier(ctx, flags);
        if (inner) {
            ctx.source.commit();
        } else {
            node->removeChildren(node->getChildCount() - 1, 1);  // the template goes back
            ctx.source.rollback();
            node->addChild(nullptr);
        }
    } else {
        node->addChild(nullptr);
        inner = parseNestedNameSpecifier(ctx, flags);
    }
    node->addChild(inner);
    return ctx.commit(node);
}

}  // namespace cpgrammar
