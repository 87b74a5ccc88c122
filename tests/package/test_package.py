#!/usr/bin/env python3
"""test_package.py BUILD_FOLDER CPACK: the Debian package, made, unpacked and run from where it was unpacked."""

import configparser
import gzip
import json
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
PROGRAM = "usr/bin/ryhost"
LIBRARIES = {"usr/lib/ryhost/librycore.so", "usr/lib/ryhost/plugins/RyJointTools.so"}
READER = "usr/lib/ryhost/ryforeign"  # of other programs' files, where the build has it
PICTURES = "usr/lib/ryhost/libryforeignpictures.so"  # of theirs
HOME = "usr/share/ryhost"
FARM = {f"{HOME}/farm/farm", f"{HOME}/farm/farm_array"}


def run(*command, **options):
    return subprocess.run([str(word) for word in command], capture_output=True, text=True, check=False, **options)


class PackageTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = pathlib.Path(cls.enterClassContext(tempfile.TemporaryDirectory()))
        made = run(CPACK, "-G", "DEB", "--config", BUILD / "CPackConfig.cmake", "-B", cls.folder / "made", cwd=cls.folder,
                   umask=0o077)
        if made.returncode:
            raise AssertionError(made.stdout + made.stderr)
        [cls.deb] = (cls.folder / "made").glob("*.deb")
        cls.root = cls.folder / "root"
        subprocess.run(["dpkg-deb", "-x", cls.deb, cls.root], check=True)
        cls.files = {str(path.relative_to(cls.root)): path for path in cls.root.rglob("*")
                     if path.is_symlink() or not path.is_dir()}

    def control(self, field):
        return run("dpkg-deb", "-f", self.deb, field).stdout.strip()

    def program(self, *arguments, plugins=None):
        """As on a machine that knows nothing of the source tree."""
        home = self.folder / "newcomer"
        home.mkdir(exist_ok=True)
        environment = {"PATH": "/usr/bin:/bin", "HOME": str(home), "LANG": "C.UTF-8"}
        if plugins is not None:
            environment["RYHOST_PLUGIN_PATH"] = str(plugins)
        return run(self.root / PROGRAM, *arguments, env=environment, cwd=home)

    def elf_files(self):
        return {name for name, path in self.files.items() if path.read_bytes()[:4] == b"\x7fELF"}

    def test_control(self):
        version = re.search(r"^CMAKE_PROJECT_VERSION:STATIC=(.*)$", (BUILD / "CMakeCache.txt").read_text(), re.M)[1]
        machine = run("dpkg", "--print-architecture").stdout.strip()
        self.assertEqual([self.control(field) for field in ("Package", "Version", "Architecture", "Section", "Priority")],
                         ["ryhost", version, machine, "graphics", "optional"])
        self.assertEqual(self.deb.name, f"ryhost_{version}_{machine}.deb")
        self.assertEqual(self.control("Maintainer"), "RyJointTools Developers <developers@ryjointtools.invalid>")
        summary, *text = self.control("Description").splitlines()
        self.assertLessEqual(len(summary), 60)
        self.assertGreater(len(text), 3)
        self.assertEqual([line for line in text if not line.startswith(" ") or len(line) > 80], [])
        self.assertGreater(int(self.control("Installed-Size")), 1000)
        for name in ("FBX", "Collada", "BVH"):
            self.assertEqual(name in " ".join(text), READER in self.files, name)

    def test_depends_on_what_it_is_linked_with(self):
        depends = self.control("Depends")
        names = {re.split(r"[ (]", name.strip())[0] for name in depends.split(",")}
        for name in ("libc6", "libqt5core5a", "libqt5gui5", "libqt5widgets5", "libqt5script5", "libqt5svg5", "libqt5opengl5",
                     "libopengl0", "libtbb12", "libgl1-mesa-dri", "python3:any"):
            self.assertIn(name, names)
        for name in ("libassimp", "libdeflate"):
            self.assertEqual(any(each.startswith(name) for each in names), READER in self.files, name)
        self.assertEqual([name for name in names if name.endswith("-dev") or "test" in name], [])
        self.assertRegex(depends, r"libqt5core5a \(>= 5\.15")

    def test_holds_what_is_needed_and_no_more(self):
        self.assertEqual(self.elf_files() - {READER, PICTURES}, LIBRARIES | {PROGRAM})
        self.assertEqual(READER in self.files, (BUILD / "lib/ryforeign").exists())
        self.assertEqual(PICTURES in self.files, READER in self.files)
        expected = {f"{HOME}/{path.relative_to(ROOT / 'resources')}" for path in (ROOT / "resources").rglob("*")
                    if path.is_file()}
        self.assertTrue(expected)
        others = {name for name in self.files if not name.startswith(f"{HOME}/docs/")} - self.elf_files() - expected - FARM
        self.assertEqual(others, {
            "usr/share/applications/ryhost.desktop", "usr/share/doc/ryhost/copyright", "usr/share/doc/ryhost/changelog.gz",
            "usr/share/icons/hicolor/scalable/apps/ryhost.svg", "usr/share/man/man1/ryhost.1.gz",
            "usr/share/mime/packages/ryhost.xml"} |
            ({"usr/share/mime/packages/ryhost-foreign.xml"} if READER in self.files else set()))
        self.assertLessEqual(expected | FARM, set(self.files))

    def test_changelog(self):
        packed = (self.root / "usr/share/doc/ryhost/changelog.gz").read_bytes()
        self.assertEqual(packed[3:8], bytes(5), "neither a name nor a time, so that the same package comes out again")
        self.assertEqual(packed[8], 2, "packed as tightly as can be")
        told = run("dpkg-parsechangelog", "-l-", input=gzip.decompress(packed).decode())
        self.assertEqual((told.returncode, told.stderr), (0, ""))
        fields = dict(re.findall(r"^([A-Z]\w*): (.*)$", told.stdout, re.M))
        self.assertEqual([fields[name] for name in ("Source", "Version", "Maintainer")],
                         [self.control(name) for name in ("Package", "Version", "Maintainer")])

    def test_owners_and_rights(self):
        entries = run("dpkg-deb", "-c", self.deb).stdout.splitlines()
        self.assertGreater(len(entries), len(self.files))
        for entry in entries:
            rights, owner, *_, name = entry.split()
            self.assertEqual(owner, "root/root", name)
            runs = rights.startswith("d") or name[2:] in FARM | {PROGRAM, READER}
            self.assertIn(rights[1:], ("rwxr-xr-x",) if runs else ("rw-r--r--",), name)

    def test_no_path_of_the_machine_that_built_it(self):
        # Texts of the toolkit have two bytes for each letter.
        places = {str(place).encode(code) for folder in (ROOT, BUILD, self.folder) for place in (folder, folder.resolve())
                  for code in ("utf-8", "utf-16-le")}
        for name, path in self.files.items():
            content = path.read_bytes()
            if name.endswith(".gz"):
                content = gzip.decompress(content)
            for place in places:
                self.assertNotIn(place, content, name)

    def test_libraries_are_found_by_place_and_stripped(self):
        for name in self.elf_files():
            self.assertNotIn(".debug_info", run("readelf", "-SW", self.root / name).stdout, name)
            self.assertNotIn(".symtab", run("readelf", "-SW", self.root / name).stdout, name)
            dynamic = run("readelf", "-dW", self.root / name).stdout
            paths = re.findall(r"\((?:RUNPATH|RPATH)\).*\[(.*)\]", dynamic)
            for path in paths:
                self.assertRegex(path, r"^\$ORIGIN(/\.\.)*(/lib/ryhost)?$", name)
            if "librycore.so" in dynamic.replace("soname: [librycore.so]", ""):
                self.assertEqual(len(paths), 1, name)

    def test_says_what_it_can_do(self):
        done = self.program("--help")
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        page = gzip.decompress((self.root / "usr/share/man/man1/ryhost.1.gz").read_bytes()).decode()
        page = page.replace("\\-", "-")
        verbs = set(re.findall(r"--[a-z][a-z-]*", done.stdout))
        self.assertGreater(len(verbs), 15)
        for verb in verbs - {"--help"}:
            self.assertRegex(page, rf"{verb}\b", "the manual page does not tell of it")

    def test_edits_a_file_from_where_it_lies(self):
        out, report = self.folder / "edited.glb", self.folder / "report.json"
        done = self.program("--batch", self.root / HOME / "samples/mannequin.glb", "--property", "lForearm:endX=70",
                            "--select", "lForearm", "--run", "RyJEAlignNodeAction", "--save", out,
                            "--screenshot", self.folder / "picture.png", "--size", "320x240", "--report", report)
        self.assertEqual(done.returncode, 0, done.stderr)
        # The scripts of its home folder are there, and every other thing that a start looks for.
        self.assertNotIn("script library", done.stderr)
        self.assertEqual([entry["ran"] for entry in json.loads(report.read_text())["runs"]], [True])
        self.assertEqual(out.read_bytes()[:4], b"glTF")
        self.assertEqual((self.folder / "picture.png").read_bytes()[1:4], b"PNG")
        again = self.program("--batch", out, "--dump")
        self.assertEqual(again.returncode, 0, again.stderr)
        self.assertRegex(again.stdout, r"\b70\b")

    def test_reads_files_of_other_programs_where_it_can(self):
        motion, out = self.folder / "motion.bvh", self.folder / "motion.glb"
        motion.write_text("HIERARCHY\nROOT hip\n{\nOFFSET 0 90 0\nCHANNELS 3 Zrotation Xrotation Yrotation\nJOINT chest\n{\n"
                          "OFFSET 0 30 0\nCHANNELS 3 Zrotation Xrotation Yrotation\nEnd Site\n{\nOFFSET 0 30 0\n}\n}\n}\n"
                          "MOTION\nFrames: 2\nFrame Time: 0.1\n0 0 0 0 0 0\n0 0 0 30 0 0\n")
        done = self.program("--batch", motion, "--save", out)
        self.assertEqual(done.returncode, 0 if READER in self.files else 1, done.stderr)
        self.assertEqual(out.exists(), READER in self.files)

    def test_works_on_many_from_where_it_lies(self):
        place = self.folder / "many"
        place.mkdir()
        shutil.copy(self.root / HOME / "samples/mannequin.glb", place / "a.glb")
        (place / "list.txt").write_text("a.glb\n")
        path = f"/usr/bin:/bin:{self.root / 'usr/bin'}:{self.root / HOME / 'farm'}"
        environment = {"PATH": path, "HOME": str(place), "LANG": "C.UTF-8", "SLURM_ARRAY_TASK_ID": "1"}
        done = run("farm_array", "list.txt", "out", "--select", "lForearm", env=environment, cwd=place)
        self.assertEqual(done.returncode, 0, done.stderr)
        table = run("farm", "table", "out", "list.txt", env=environment, cwd=place)
        self.assertEqual((table.returncode, table.stdout.splitlines()[1:]), (0, ["a.glb\tdone\t0\t"]))

    def test_the_plugin_is_the_installed_one(self):
        done = self.program("--batch", self.root / HOME / "samples/mannequin.glb", "--select", "lForearm", "--run",
                            "RyJEAlignNodeAction", plugins=self.folder / "nothing")
        self.assertNotEqual(done.returncode, 0)

    def test_desktop_entry(self):
        parser = configparser.ConfigParser(interpolation=None, strict=True)
        parser.optionxform = str
        parser.read(self.root / "usr/share/applications/ryhost.desktop", encoding="utf-8")
        self.assertEqual(parser.sections(), ["Desktop Entry"])
        entry = parser["Desktop Entry"]
        self.assertEqual((entry["Type"], entry["Terminal"]), ("Application", "false"))
        program, argument = entry["Exec"].split()
        self.assertEqual((f"usr/bin/{program}", argument, entry["TryExec"]), (PROGRAM, "%F", program))
        self.assertTrue(entry["Name"] and entry["GenericName"] and entry["Comment"])
        self.assertEqual(entry["StartupWMClass"], "ryhost")
        icon = (self.root / f"usr/share/icons/hicolor/scalable/apps/{entry['Icon']}.svg").read_bytes()
        self.assertEqual(icon, (ROOT / "resources/icons/app.svg").read_bytes())
        for key in ("Categories", "Keywords", "MimeType"):
            self.assertTrue(entry[key].endswith(";"), key)
        for name in ("FBX", "Collada", "DAE", "BVH"):
            self.assertEqual(name in entry["Keywords"].split(";"), READER in self.files, name)
        types = entry["MimeType"].strip(";").split(";")
        endings = self.endings_of_types()
        told = {pattern for mime_type in types for pattern in endings.get(mime_type, {})}
        self.assertEqual(told, {"*.glb", "*.gltf", "*.obj"} |
                         ({"*.fbx", "*.dae", "*.bvh"} if READER in self.files else set()))
        for mime_type in types:
            self.assertTrue(endings.get(mime_type), mime_type)

    def endings_of_types(self):
        """What a desktop makes of the system's types and ours: the endings of each type, by weight."""
        data = self.folder / "mime"
        if not data.exists():
            (data / "packages").mkdir(parents=True)
            for packages in (pathlib.Path("/usr/share/mime/packages"), self.root / "usr/share/mime/packages"):
                for file in packages.glob("*.xml"):
                    shutil.copy(file, data / "packages")
            updated = run("update-mime-database", data, env={"PATH": "/usr/bin:/bin", "XDG_DATA_HOME": str(self.folder)})
            self.assertEqual((updated.returncode, updated.stderr), (0, ""))
        endings = {}
        for row in (data / "globs2").read_text().splitlines():
            if not row.startswith("#"):
                weight, mime_type, pattern = row.split(":")[:3]
                patterns = endings.setdefault(mime_type, {})
                patterns[pattern] = max(int(weight), patterns.get(pattern, 0))
        return endings

    def test_a_model_is_no_drawing(self):
        endings = self.endings_of_types()
        weights = {mime_type: patterns["*.obj"] for mime_type, patterns in endings.items() if "*.obj" in patterns}
        self.assertGreater(len(weights), 1)  # else nothing needs to be said
        first = max(weights, key=weights.get)
        self.assertEqual(first, "model/obj")
        self.assertEqual(list(weights.values()).count(weights[first]), 1)

    def test_the_guide_is_whole(self):
        docs = self.root / HOME / "docs"
        pages = sorted(docs.glob("*.md"))
        self.assertIn(docs / "guide.md", pages)
        for page in pages:
            for target in re.findall(r"\]\(([^)#\s]+)[^)]*\)", page.read_text(encoding="utf-8")):
                if "://" not in target:
                    self.assertTrue((docs / target).is_file(), f"{page.name}: {target}")
        told = "".join(page.read_text(encoding="utf-8") for page in pages)
        unused = [picture.name for picture in (docs / "pictures").iterdir() if f"pictures/{picture.name}" not in told]
        self.assertEqual([name for name in unused if name in ("cesiumman.png", "human.png")], [])

    def test_copyright(self):
        text = (self.root / "usr/share/doc/ryhost/copyright").read_text(encoding="utf-8")
        for field in ("Format", "Upstream-Name", "Files", "Copyright", "License"):
            self.assertRegex(text, rf"(?m)^{field}: \S")


if __name__ == "__main__":
    CPACK = sys.argv.pop()
    BUILD = pathlib.Path(sys.argv.pop())
    unittest.main()
