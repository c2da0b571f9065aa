#include "platform/store/QueryClauses.h"

#include <gtest/gtest.h>

#include "platform/store/StoreError.h"

namespace {

using store::QueryClauses;

TEST(QueryClauses, AreFoundOutsideOfQuotesBracketsAndParentheses) {
  const QueryClauses plain(
      "SELECT IIF(a = 1, 'x ORDER BY y', b) AS [Order By] FROM [Where From] LEFT JOIN t ON (t.a = [Where "
      "From].a)  WHERE a = 'it''s WHERE' AND (b = 1 OR c = #1/1/2026#) ORDER BY [t.a] DESC, LEFT(b, 2), c "
      "asc ; ");
  EXPECT_EQ(plain.Where(), "a = 'it''s WHERE' AND (b = 1 OR c = #1/1/2026#)");
  ASSERT_EQ(plain.OrderedBy().size(), 3U);
  EXPECT_EQ(plain.OrderedBy()[0].column, "[t.a]");
  EXPECT_TRUE(plain.OrderedBy()[0].descends);
  EXPECT_EQ(plain.OrderedBy()[1].column, "LEFT(b, 2)");
  EXPECT_EQ(plain.OrderedBy()[2].column, "c");
  EXPECT_FALSE(plain.OrderedBy()[1].descends || plain.OrderedBy()[2].descends);
  EXPECT_FALSE(plain.Limited());
  // A column may be called as a clause is, behind its table.
  EXPECT_EQ(QueryClauses("SELECT t.Where FROM t ORDER BY t.Having").OrderedBy().front().column, "t.Having");
}

TEST(QueryClauses, AreWrittenAgainWithTheirLiterals) {
  const QueryClauses query(
      "select 1.50, 'it''s  two', a from t\n where a = \"x'y\" or b = #2/29/2000# order by a");
  EXPECT_EQ(query.Text(),
            "select 1.50, 'it''s  two', a from t WHERE a = \"x'y\" or b = #2/29/2000# ORDER BY a");
  EXPECT_EQ(query.WithOrder("[t].[b] DESC"),
            "select 1.50, 'it''s  two', a from t WHERE a = \"x'y\" or b = #2/29/2000# ORDER BY [t].[b] DESC");
  EXPECT_EQ(QueryClauses("select a from t where a = 1 or b = 2 order by a").First(3, "c = 3"),
            "SELECT TOP 3 a from t WHERE (a = 1 or b = 2) AND (c = 3) ORDER BY a");
  const QueryClauses grouped("SELECT a, COUNT(*) FROM t GROUP BY a HAVING COUNT(*) > 1 ORDER BY a");
  EXPECT_TRUE(grouped.Limited());
  EXPECT_EQ(grouped.Text(), "SELECT a, COUNT(*) FROM t GROUP BY a HAVING COUNT(*) > 1 ORDER BY a");
  EXPECT_TRUE(QueryClauses("SELECT DISTINCT a FROM t").Limited());
  EXPECT_TRUE(QueryClauses("SELECT TOP 2 a FROM t").Limited());
  EXPECT_EQ(QueryClauses("Select and Sort Queries").Text(), "SELECT * FROM [Select and Sort Queries]");
}

TEST(QueryClauses, WhatIsNotUnderstoodIsAnError) {
  for (const char* query :
       {"SELECT a FROM t WHERE a = 'open", "SELECT a FROM t WHERE a = 1 WHERE b = 2",
        "SELECT a FROM t ORDER BY a WHERE b = 2", "SELECT a FROM t WHERE", "SELECT a FROM t ORDER BY a,",
        "SELECT [a FROM t", "SELECT a FROM t WHERE a = #today#"}) {
    try {
      const QueryClauses clauses(query);
      ADD_FAILURE() << query << " gave " << clauses.Text();
    } catch (const store::StoreError& error) {
      EXPECT_EQ(error.Number(), store::kSyntax) << query;
    }
  }
}

}  // namespace
