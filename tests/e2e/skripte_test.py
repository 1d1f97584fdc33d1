"""The scripts that a newcomer meets first tell what they do."""
import pathlib
import subprocess
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]


class Scripts(unittest.TestCase):
    def ask(self, *command):
        return subprocess.run(command, cwd=ROOT, capture_output=True, text=True, timeout=30)

    def test_they_answer_to_help_and_refuse_what_they_do_not_know(self):
        demo = self.ask("./demo", "--help")
        self.assertEqual(demo.returncode, 0)
        self.assertIn("--seconds N", demo.stdout)
        self.assertEqual(self.ask("./demo", "-h").stdout, demo.stdout)
        unknown = self.ask("./demo", "--unknown")
        self.assertEqual((unknown.returncode, unknown.stdout), (2, ""))
        self.assertIn("Usage: ./demo", unknown.stderr)
        test = self.ask("./test", "--help")
        self.assertEqual(test.returncode, 0)
        self.assertIn("./test quick", test.stdout)

    def test_a_number_that_is_none_is_refused_under_both_spellings(self):
        for option in ("--seconds", "--sekunden"):
            done = self.ask("./demo", option, "many")
            self.assertEqual(done.returncode, 2)
            self.assertIn("whole numbers", done.stderr)


if __name__ == "__main__":
    unittest.main()
