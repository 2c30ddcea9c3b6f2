#pragma once

/// The SQL of the file inventory's store.
namespace Norvik::KOB::V2::Sentences {

struct Insert {
  const char* sentence;
  const char* failure;
};

/// One set of tables.
struct Generation {
  const char* tables[4];  ///< in the order of clearing
  Insert extensions;
  Insert paths;
  Insert companies;
  Insert files;
};

constexpr Generation MAIN = {
    {"RUD2_LAST_INVENTORY", "RUD2_FILE_COMPANY", "RUD2_FILE_PATH", "RUD2_FILE_EXTENSION"},
    {"INSERT OR IGNORE INTO RUD2_FILE_EXTENSION(id, extension) VALUES({1}, '{2}')",
     "Unable insert File Extensions Completo - %1%"},
    {"INSERT OR IGNORE INTO RUD2_FILE_PATH(id, path) VALUES({1}, '{2}')",
     "Unable insert File Paths Completo - %1%"},
    {"INSERT OR IGNORE INTO RUD2_FILE_COMPANY(id, company) VALUES({1}, '{2}')",
     "Unable insert File Companies Completo - %1%"},
    {"INSERT OR IGNORE INTO RUD2_LAST_INVENTORY(    id_path, id_extension, size, "
     "last_modification, file_name, absolute_path, product_name, version, is_executable, "
     "id_company_name,     file_description, id_file_state, file_version     ) values ({1}, "
     "{2}, {3}, {4}, '{5}', '{6}', '{7}', '{8}', {9}, {10}, '{11}', {12}, '{13}')",
     "Unable insert Files Completo - %1%"},
};

constexpr Generation TEMP = {
    {"RUD2_LAST_INVENTORY_TEMP", "RUD2_FILE_COMPANY_TEMP", "RUD2_FILE_PATH_TEMP",
     "RUD2_FILE_EXTENSION_TEMP"},
    {"INSERT OR IGNORE INTO RUD2_FILE_EXTENSION_TEMP(id, extension) VALUES({1}, '{2}')",
     "Unable insert File Extensions Incremental - %1%"},
    {"INSERT OR IGNORE INTO RUD2_FILE_PATH_TEMP(id, path) VALUES({1}, '{2}')",
     "Unable insert File Paths Incremental - %1%"},
    {"INSERT OR IGNORE INTO RUD2_FILE_COMPANY_TEMP(id, company) VALUES({1}, '{2}')",
     "Unable insert File Companies Incremental - %1%"},
    {"INSERT OR IGNORE INTO RUD2_LAST_INVENTORY_TEMP(    id_path, id_extension, size, "
     "last_modification, file_name, absolute_path, product_name, version, is_executable, "
     "id_company_name,     file_description, id_file_state, file_version     ) values ({1}, "
     "{2}, {3}, {4}, '{5}', '{6}', '{7}', '{8}', {9}, {10}, '{11}', {12}, '{13}')",
     "Unable insert Files Incremental - %1%"},
};

// Each selects the same twelve columns, and joins a file with the lookup tables of its own
// generation.

constexpr char ALL_FILES[] =
    "select LI.id_file_state, FP.path, LI.file_name, FE.extension, LI.size, "
    "LI.last_modification, LI.product_name,         LI.version, LI.file_description, "
    "FC.company, LI.is_executable, LI.file_version from RUD2_LAST_INVENTORY LI, "
    "RUD2_FILE_PATH FP, RUD2_FILE_EXTENSION FE, RUD2_FILE_COMPANY FC where LI.id_extension "
    "= FE.id and LI.id_path = FP.id and FC.id = LI.id_company_name";

constexpr char NEW_FILES[] =
    "SELECT LI.id_file_state, FP.path, LI.file_name, FE.extension, LI.size, "
    "LI.last_modification, LI.product_name, LI.version, LI.file_description, FC.company, "
    "LI.is_executable, LI.file_version FROM  RUD2_LAST_INVENTORY_TEMP LI, "
    "RUD2_FILE_PATH_TEMP FP, RUD2_FILE_EXTENSION_TEMP FE, RUD2_FILE_COMPANY_TEMP FC LEFT  "
    "JOIN RUD2_LAST_INVENTORY ON LI.absolute_path = RUD2_LAST_INVENTORY.absolute_path "
    "WHERE RUD2_LAST_INVENTORY.absolute_path IS NULL and LI.id_extension = FE.id and "
    "LI.id_path = FP.id and FC.id = LI.id_company_name";

constexpr char REMOVED_FILES[] =
    "SELECT LI.id_file_state, FP.path, LI.file_name, FE.extension, LI.size, "
    "LI.last_modification, LI.product_name, LI.version, LI.file_description, FC.company, "
    "LI.is_executable, LI.file_version FROM  RUD2_LAST_INVENTORY LI, RUD2_FILE_PATH FP, "
    "RUD2_FILE_EXTENSION FE, RUD2_FILE_COMPANY FC LEFT  JOIN RUD2_LAST_INVENTORY_TEMP ON "
    "LI.absolute_path = RUD2_LAST_INVENTORY_TEMP.absolute_path WHERE "
    "RUD2_LAST_INVENTORY_TEMP.absolute_path IS NULL and LI.id_extension = FE.id and "
    "LI.id_path = FP.id and FC.id = LI.id_company_name";

constexpr char MODIFIED_FILES[] =
    "SELECT LI.id_file_state, FP.path, LI.file_name, FE.extension, LI.size, "
    "LI.last_modification, LI.product_name, LI.version, LI.file_description, FC.company, "
    "LI.is_executable, LI.file_version FROM  RUD2_LAST_INVENTORY_TEMP LI, "
    "RUD2_FILE_PATH_TEMP FP, RUD2_FILE_EXTENSION_TEMP FE, RUD2_FILE_COMPANY_TEMP FC INNER "
    "JOIN RUD2_LAST_INVENTORY ON LI.absolute_path = RUD2_LAST_INVENTORY.absolute_path "
    "WHERE LI.last_modification <> RUD2_LAST_INVENTORY.last_modification and "
    "LI.id_extension = FE.id and LI.id_path = FP.id and FC.id = LI.id_company_name";

}  // namespace Norvik::KOB::V2::Sentences
