// Placeholder translation unit for a layer that has no sources yet.
namespace { [[maybe_unused]] int qbEmptyLayer = 0; }
