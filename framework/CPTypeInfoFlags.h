// The C and C++ attribute word of a type, and the lookup flags that the conversion operations
// take. Name lookup has more flags than these; the values are shared so that a caller can pass
// its lookup flags on unchanged.
#pragma once

#include <cstdint>

enum CPTypeFlag : uint32_t {
    CPTYPE_LValue = 0x1,
    CPTYPE_Auto = 0x2,
    CPTYPE_Register = 0x4,
    CPTYPE_Restrict = 0x8,
    CPTYPE_Static = 0x10,
    CPTYPE_Extern = 0x20,
    CPTYPE_Export = 0x40,
    CPTYPE_Mutable = 0x80,
    CPTYPE_Inline = 0x100,
    CPTYPE_Virtual = 0x200,
    CPTYPE_Abstract = 0x400,
    CPTYPE_Explicit = 0x800,
    CPTYPE_Const = 0x1000,
    CPTYPE_Volatile = 0x2000,
    CPTYPE_Private = 0x4000,
    CPTYPE_Protected = 0x8000,
    CPTYPE_Public = 0x10000,
    CPTYPE_Friend = 0x20000,
    CPTYPE_Typedef = 0x40000,
    CPTYPE_AssignedTo = 0x80000,
    CPTYPE_NoImplicitConversion = 0x100000,
    CPTYPE_FunctionCalled = 0x200000,
    CPTYPE_TemplateNotInstantiated = 0x400000,
    CPTYPE_AllFlags = 0x7FFFFF
};

enum CPLookupFlags : uint32_t {
    LOOKUP_HideProtected = 0x1,
    LOOKUP_HidePrivate = 0x2,
    LOOKUP_NoConstFunctions = 0x4,
    LOOKUP_NoVolatileFunctions = 0x8,
    LOOKUP_FileScopeOnly = 0x10,
    LOOKUP_NoOuterScopes = 0x20,
    LOOKUP_NoEnclosingScopes = 0x40,
    LOOKUP_RankedConversionsOnly = 0x80,
    LOOKUP_NoUserConversions = 0x100,
    LOOKUP_ConstObject = 0x200,
    LOOKUP_VolatileObject = 0x400,
    LOOKUP_ExactArguments = 0x800,
    LOOKUP_SkipWithBody = 0x1000,
    LOOKUP_FirstArgumentExact = 0x2000,
    LOOKUP_Call = 0x4000,
    LOOKUP_KeepVariable = 0x8000,
    LOOKUP_MatchParameterByPosition = 0x10000,
    LOOKUP_CompareTemplates = 0x20000,
    LOOKUP_IgnoreAccess = 0x80000,
    LOOKUP_StaticOnly = 0x1000000,
    LOOKUP_TypedefDistinct = 0x2000000,
    LOOKUP_InBaseClass = 0x4000000,
    LOOKUP_SymbolExists = 0x8000000,
    LOOKUP_TemplatesOnly = 0x10000000,
    LOOKUP_TypesOnly = 0x20000000
};

// Flags of the conversion rank itself.
enum CPRankFlags : uint32_t {
    CPRANK_DerivedToBase = 0x40000,       // a derived class ranks against its base
    CPRANK_InUserConversion = 0x200000,   // canConvert is inside a user-defined conversion
    CPRANK_ArrayBoundIgnored = 0x400000,  // an array target keeps its form against a pointer
    CPRANK_Pointee = 0x800000,            // below a pointer or reference: names of functions don't count
    CPRANK_QualifiedPointee = 0x40000000  // a pointee level whose outer level isn't const
};
