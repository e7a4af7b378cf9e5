import unittest

import scripts  # noqa: F401  (for the path)
from places import changed, line_of, places


def changes(source):
    """Of every place: its mutator, its text, and what may take its place."""
    return [(p.mutator, source[p.begin:p.end], p.replacements)
            for p in places("a.cpp", source)]


def statements(body):
    source = f"void f() {{\n{body}\n}}\n"
    return [text for mutator, text, _ in changes(source) if mutator == "statement"]


class PlacesTest(unittest.TestCase):
    def expect(self, expected, source):
        self.assertEqual(expected, changes(source))

    def test_operators_between_blanks_are_changed(self):
        self.expect([("comparison", "<=", ["<", ">"])], "bool b = a <= c;\n")
        self.expect([("arithmetic", "+", ["-"])], "int b = a + c;\n")
        self.expect([("logic", "&&", ["||"])], "bool b = a && c;\n")
        self.expect([("unary", "!", [""])], "bool b = !a;\n")

    def test_signs_of_types_are_not(self):
        self.expect([], "std::vector<int> f(A&& a, B* b, const C& c);\n")
        self.expect([], "template <typename T>\nT* f(T&&);\n")

    def test_numbers_go_up_and_down_and_to_zero(self):
        self.expect([("number", "20u", ["21u", "19u", "0u"])], "auto a = 20u;\n")
        self.expect([("number", "0x10", ["17", "15", "0"])], "auto a = 0x10;\n")
        self.expect([("number", "0666", ["439", "437", "0"])], "auto a = 0666;\n")
        self.expect([("number", "1", ["2", "0"])], "auto a = 1;\n")
        self.expect([("number", "0", ["1", "-1"])], "auto a = 0;\n")
        self.expect([("number", "1.5", ["2.5", "0.5", "0.0"])], "auto a = 1.5;\n")

    def test_the_zero_of_a_pure_function_stays(self):
        self.expect([], "struct S { virtual void f() const = 0; };\n")

    def test_texts_and_characters_become_others(self):
        self.expect([("string", '"ab"', ['""', '"#b"'])], 'auto a = "ab";\n')
        self.expect([("string", r'"\nb"', ['""', '"#b"'])], 'auto a = "\\nb";\n')
        self.expect([("string", '""', ['"x"'])], 'auto a = "";\n')
        self.expect([("character", "'x'", ["'y'"])], "auto a = 'x';\n")
        self.expect([("word", "true", ["false"])], "auto a = true;\n")
        self.expect([], 'extern "C" {}\n')

    def test_a_condition_holds_always_or_never_or_the_other_way_round(self):
        self.expect([("condition", "a(b)", ["true", "false", "!(a(b))"])],
                    "void f() { if (a(b)) { int i; } }\n")
        self.expect([("condition", "a", ["false", "!(a)"])],
                    "void f() { for (int i; a;) int j; }\n")
        self.expect([], "void f() { for (int i : a) int j; }\n")

    def test_one_branch_is_taken(self):
        source = "int a = b ? c : d;\n"
        self.expect([("branch", "?", ["|| true ?", "&& false ?"])], source)
        place = places("a.cpp", source)[0]
        self.assertEqual("int a = b || true ? c : d;\n",
                         changed(source, place, "|| true ?"))

    def test_comments_directives_and_assertions_are_left_alone(self):
        self.expect([], "// a == 1\n/* 2\n 3 */\n#define A 4 \\\n  5\n"
                        'static_assert(6 == 7, "8");\n')

    def test_a_change_leaves_the_lines_where_they_are(self):
        source = "void f() {\n    a(b,\n      c);\n    d();\n}\n"
        first, second = places("a.cpp", source)
        self.assertEqual((2, 4), (line_of(first, source), line_of(second, source)))
        self.assertEqual("void f() {\n    \n;\n    d();\n}\n", changed(source, first, ""))


class StatementsTest(unittest.TestCase):
    def test_expressions_are_statements(self):
        for text in ("a()", "a = b", "a += b", "++a", "a++", "*a = b", "a[b] = c",
                     "a::b<c>(d)", "a.b->c(d)", "a << b", "delete a", "throw a(b)",
                     "throw", "a = {b, c}", "a([] { return; })"):
            with self.subTest(text=text):
                self.assertEqual([text], statements(text + ";"))

    def test_declarations_and_jumps_are_not(self):
        for text in ("A a", "A* a = b", "const A& a(b)", "A::B<C> a{b}", "auto a = b",
                     "std::vector<A> a{{b, c}}", "return a", "break", "using A = B",
                     "auto& [a, b] = c", "int a"):
            with self.subTest(text=text):
                self.assertEqual([], statements(text + ";"))

    def test_they_stand_behind_heads_and_labels(self):
        self.assertEqual(
            ["a()", "b()", "c()", "d()", "e()"],
            statements("if (x) a(); else b();\n"
                       "for (A y : z) { c(); }\n"
                       "switch (x) { case A: d(); default: break; }\n"
                       "do e(); while (x);"))

    def test_outside_of_functions_there_are_none(self):
        for source in ("class A : public B {\n    A();\n    C c{d};\n};\n",
                       "namespace a {\nb::b() = default;\nint c{d};\n}\n",
                       "A::A() : b(c) {}\n"):
            with self.subTest(source=source):
                self.assertEqual([], [c for c in changes(source) if c[0] == "statement"])

    def test_they_stand_in_every_kind_of_block(self):
        for head in ("A::A() : b(c)", "auto f() -> B", "B f() const", "B f() noexcept",
                     "B f() try", "auto a = []", "auto a = [](B b)"):
            with self.subTest(head=head):
                self.assertEqual(["d()"], [c[1] for c in changes(head + " { d(); }\n")])


if __name__ == "__main__":
    unittest.main()
