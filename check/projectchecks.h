#pragma once

class ModelChecker;
class ObjectDataBase;

/// The checks of settings that hold for the whole project. All return the number of errors.
namespace ProjectChecks {

/// All of them, in the order of the log. Takes `PreviousToolVersion` back once its hint was given.
int checkProject(ModelChecker &checker, ObjectDataBase &database);
/// Settings that the generated code needs as numbers.
int checkNumericSettings(ModelChecker &checker, ObjectDataBase &database);

} // namespace ProjectChecks
