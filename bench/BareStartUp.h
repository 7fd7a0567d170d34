#pragma once

#include <cstddef>
#include <string>

/// The least that a start-up can cost: each file opened, read and parsed once, plain records filled from it.
/// @param dataDir     a data root as BenchData::writeDataRoot makes it
/// @param schemaDir   where the schemas lie; empty leaves validation out
/// @return the number of items read
std::size_t startUpBare(const std::string& dataDir, const std::string& schemaDir);

/// The least that reading one store again can cost: its metadata, its catalog and each item's file, once, validated.
/// @param dir  a directory like a store's of such a data root
/// @return the number of items read
std::size_t readStoreBare(const std::string& dir, const std::string& schemaDir);
