// The shape tables, compiled once into the validation rules of the framework.
//
// A pattern reads like the grammar: `DeclSpecifierSequence? InitDeclaratorList? SEMICOLON`.
// A name is a node's print name, a token kind's, a keyword's spelling, or one of the family
// names below, or TOKEN for a token of any kind. A group `( a | b c )` is a choice of sequences. An optional or repeated choice
// also accepts a null child in its place, since absent optional items keep their slots.
#include <cstring>

#include "CPParseContext.h"

namespace {

struct FamilyName {
    const char* name;
    int type;
};

const FamilyName kFamilies[] = {
    {"IDExpression", CPN_IDExpression},       {"UnqualifiedID", CPN_UnqualifiedID},
    {"QualifiedID", CPN_QualifiedID},         {"PrimaryExpression", CPN_PrimaryExpression},
    {"PostfixExpression", CPN_PostfixExpression}, {"UnaryExpression", CPN_UnaryExpression},
    {"NewDeclarator", CPN_NewDeclarator},     {"DirectNewDeclarator", CPN_DirectNewDeclarator},
    {"CastExpression", CPN_CastExpression},   {"Statement", CPN_Statement},
    {"SimpleTypeSpecifier", CPN_SimpleTypeSpecifier},
    {"ElaboratedTypeSpecifier", CPN_ElaboratedTypeSpecifier},
    {"BlockDeclaration", CPN_BlockDeclaration}, {"PointerOperator", CPN_PointerOperator},
    {"Declarator", CPN_Declarator},           {"DirectDeclarator", CPN_DirectDeclarator},
    {"AbstractDeclarator", CPN_AbstractDeclarator},
    {"DirectAbstractDeclarator", CPN_DirectAbstractDeclarator},
    {"Initializer", CPN_Initializer},         {"MemberDeclarationFactory", CPN_MemberDeclarationFactory},
    {"Declaration", CPN_DeclarationFactory},  {"CppCOMAttribute", CPN_CppCOMAttribute},
    {"CppTypeTrait", CPN_CppTypeTrait},
};

// Matches a null child only: the place of an absent optional choice.
const int kNullSlot = CPT_LAST + 1;

int problems = 0;

int lookUp(const char* name, unsigned length) {
    auto same = [&](const char* text) {
        return text && std::strlen(text) == length && std::strncmp(text, name, length) == 0;
    };
    for (const FamilyName& family : kFamilies)
        if (same(family.name)) return family.type;
    for (int t = 1; t <= CPT_LAST; ++t)
        if (same(cpParseNodeTypeName(t))) return t;
    ++problems;
    return kNullSlot;
}

class Compiler {
public:
    explicit Compiler(const char* text) : p(text) {}

    // sequence := item* up to ')' '|' or the end
    CPShapeRule* sequence() {
        quernbase::QBArray<CPShapeRule> rules;
        for (skipBlanks(); *p && *p != ')' && *p != '|'; skipBlanks()) rules.add(item());
        return finish(rules);
    }

private:
    const char* p;

    void skipBlanks() {
        while (*p == ' ') ++p;
    }
    int suffix() {
        if (*p == '?' || *p == '*' || *p == '+') return *p++;
        return ' ';
    }
    static CPShapeRule* finish(quernbase::QBArray<CPShapeRule>& rules) {
        CPShapeRule* out = new CPShapeRule[rules.count() + 1];
        for (unsigned i = 0; i < rules.count(); ++i) out[i] = rules[i];
        out[rules.count()] = CPShapeRule{0, ' ', nullptr};
        return out;
    }
    CPShapeRule item() {
        if (*p != '(') {
            const char* start = p;
            while (*p && *p != ' ' && *p != '?' && *p != '*' && *p != '+' && *p != ')' &&
                   *p != '|')
                ++p;
            unsigned length = unsigned(p - start);
            if (length == 5 && std::strncmp(start, "TOKEN", 5) == 0) return anyToken(suffix());
            return CPShapeRule{lookUp(start, length), suffix(), nullptr};
        }
        ++p;
        quernbase::QBArray<CPShapeRule*> choices;
        for (;;) {
            choices.add(sequence());
            if (*p != '|') break;
            ++p;
        }
        if (*p == ')') ++p;
        int op = suffix();
        if (choices.count() == 1) return CPShapeRule{0, op, choices[0]};
        return choice(choices, op);
    }
    // A choice of every token kind: the raw runs of assembly and of attributes.
    static CPShapeRule anyToken(int op) {
        quernbase::QBArray<CPShapeRule*> kinds;
        for (int t = 1; t <= CPT_LAST_TOKEN; ++t) {
            quernbase::QBArray<CPShapeRule> one;
            one.add(CPShapeRule{t, ' ', nullptr});
            kinds.add(finish(one));
        }
        return choice(kinds, op);
    }
    // A single-item alternative stands as itself; longer ones as sequences.
    static CPShapeRule choice(quernbase::QBArray<CPShapeRule*>& choices, int op) {
        quernbase::QBArray<CPShapeRule> entries;
        for (CPShapeRule* seq : choices) {
            bool single = seq[0].type != 0 && seq[1].type == 0 && !seq[1].sublist && seq[0].op == ' ';
            if (single) {
                entries.add(seq[0]);
                delete[] seq;
            } else {
                entries.add(CPShapeRule{0, ' ', seq});
            }
        }
        if (op != ' ' && op != '+') entries.add(CPShapeRule{kNullSlot, '?', nullptr});
        CPShapeRule* list = finish(entries);
        if (op == ' ' || op == '?') return CPShapeRule{0, '|', list};
        quernbase::QBArray<CPShapeRule> wrapped;
        wrapped.add(CPShapeRule{0, '|', list});
        return CPShapeRule{0, op, finish(wrapped)};
    }
};

struct Registry {
    const CPShapeRule* rules[CPT_LAST + 1] = {};
    Registry() {
        const CPShapePattern* tables[] = {cpDeclarationShapes, cpClassShapes, cpStatementShapes,
                                          cpExpressionShapes};
        for (const CPShapePattern* table : tables)
            for (; table->type != 0; ++table) rules[table->type] = Compiler(table->pattern).sequence();
    }
};

const Registry& registry() {
    static const Registry compiled;
    return compiled;
}

}  // namespace

const CPShapeRule* cpShapeOf(int nodeType) {
    if (nodeType < 0 || nodeType > CPT_LAST) return nullptr;
    return registry().rules[nodeType];
}

int CPParseTree::validate() { return TBPParseTree<CPParseNodeType>::validate(this, cpShapeOf(getType())); }

int cpShapeProblems() {
    registry();
    return problems;
}
