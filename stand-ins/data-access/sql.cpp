#include "stand-ins/data-access/sql.h"

namespace {

struct Row {
    Verb verb;
    Shape shape;
    std::string_view sql;  // LIST stands for the name of the list
};

// A set keeps the row and its place in the indexes where only the value changes.
constexpr Row kStatements[] = {
    {Verb::kGet, Shape::kPlainItem,
     "SELECT c_dal_value FROM tbl_dal_key_dal_value"
     " WHERE c_dal_key = ?2 AND c_dal_profile_no = ?3"},
    {Verb::kSet, Shape::kPlainItem,
     "INSERT INTO tbl_dal_key_dal_value (c_dal_key, c_dal_profile_no, c_dal_value)"
     " VALUES (?2, ?3, ?4)"
     " ON CONFLICT (c_dal_key, c_dal_profile_no) DO UPDATE SET c_dal_value = excluded.c_dal_value"},
    {Verb::kDelete, Shape::kPlainItem,
     "DELETE FROM tbl_dal_key_dal_value WHERE c_dal_key = ?2 AND c_dal_profile_no = ?3"},
    {Verb::kDeleteInAllProfiles, Shape::kPlainItem,
     "DELETE FROM tbl_dal_key_dal_value WHERE c_dal_key = ?2"},
    {Verb::kIsPresent, Shape::kPlainItem,
     "SELECT 1 FROM tbl_dal_key_dal_value WHERE c_dal_key = ?2 AND c_dal_profile_no = ?3"},

    {Verb::kGet, Shape::kListItem,
     "SELECT c_dal_value FROM tbl_LIST_dal_key_dal_value"
     " WHERE c_LIST = ?1 AND c_dal_key = ?2 AND c_dal_profile_no = ?3"},
    {Verb::kSet, Shape::kListItem,
     "INSERT INTO tbl_LIST_dal_key_dal_value (c_LIST, c_dal_key, c_dal_profile_no, c_dal_value)"
     " VALUES (?1, ?2, ?3, ?4)"
     " ON CONFLICT (c_LIST, c_dal_key, c_dal_profile_no)"
     " DO UPDATE SET c_dal_value = excluded.c_dal_value"},
    {Verb::kDelete, Shape::kListItem,
     "DELETE FROM tbl_LIST_dal_key_dal_value"
     " WHERE c_LIST = ?1 AND c_dal_key = ?2 AND c_dal_profile_no = ?3"},
    {Verb::kDeleteInAllProfiles, Shape::kListItem,
     "DELETE FROM tbl_LIST_dal_key_dal_value WHERE c_LIST = ?1 AND c_dal_key = ?2"},
    {Verb::kIsPresent, Shape::kListItem,
     "SELECT 1 FROM tbl_LIST_dal_key_dal_value"
     " WHERE c_LIST = ?1 AND c_dal_key = ?2 AND c_dal_profile_no = ?3"},

    {Verb::kAddNode, Shape::kListItem,
     "INSERT OR IGNORE INTO tbl_LIST (c_LIST, c_dal_profile_no) VALUES (?1, ?3)"},
    {Verb::kDelete, Shape::kNode,
     "DELETE FROM tbl_LIST WHERE c_LIST = ?1 AND c_dal_profile_no = ?3"},
    {Verb::kDeleteInAllProfiles, Shape::kNode, "DELETE FROM tbl_LIST WHERE c_LIST = ?1"},
    {Verb::kIsPresent, Shape::kNode,
     "SELECT 1 FROM tbl_LIST WHERE c_LIST = ?1 AND c_dal_profile_no = ?3"},
    {Verb::kDeleteInAllProfiles, Shape::kWholeList, "DELETE FROM tbl_LIST"},
    {Verb::kListNodes, Shape::kWholeList,
     "SELECT c_LIST FROM tbl_LIST"
     " WHERE c_dal_profile_no = ?3 AND c_LIST IS NOT NULL ORDER BY c_LIST"},
};

}  // namespace

std::string sqlOf(Verb verb, Shape shape, std::string_view list) {
    constexpr std::string_view kPlaceholder = "LIST";
    for (const Row& row : kStatements) {
        if (row.verb != verb || row.shape != shape) {
            continue;
        }
        std::string sql(row.sql);
        for (size_t at = 0; (at = sql.find(kPlaceholder, at)) != std::string::npos;) {
            sql.replace(at, kPlaceholder.size(), list);
            at += list.size();
        }
        return sql;
    }
    return {};
}
