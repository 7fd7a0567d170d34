"""scripts/check-links on small pages."""

import unittest

from support.hubtest import TREE, lay_tree, run

PAGE = """# A page: `of` links

[here](#a-page-of-links) [twice](other.md#part-1) [net](https://example.org/none) [dir](dir) `[code](none)`

```sh
echo "[code](none)"
# no heading
```
"""
DEAD = {"gone.md": "no such file", "#no-heading": "no such heading", "other.md#part-2": "no such heading"}


class LinksTest(unittest.TestCase):
    def test_finds_dead_links_alone(self):
        """Catches: a link that leads nowhere and is passed over, one that is alive and is told."""
        dead = "".join(f"[dead]({link})\n" for link in DEAD)
        tree = lay_tree({"page.md": PAGE, "dead.md": dead, "other.md": "## Part\n## Part\n", "dir/x": ""})
        self.assertEqual(run(TREE / "scripts/check-links", "page.md", cwd=tree).returncode, 0)
        result = run(TREE / "scripts/check-links", "page.md", "dead.md", cwd=tree)
        self.assertEqual(result.returncode, 1)
        for line, (link, fault) in zip(result.stderr.splitlines(), DEAD.items(), strict=True):
            self.assertRegex(line, f"dead.md: {link}: .*{fault}")
