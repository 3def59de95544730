#!/usr/bin/env python3
"""Measures how much the test suite notices: plants realistic faults one at a
time and records whether the tests fail.

Each fault below is a small edit a developer could well make (a threshold
moved by one, a mapping swapped, a state restore forgotten). Each is built and
tested on its own in a private copy, a git worktree of HEAD at
<build-dir>/tree: the checkout is never touched, and only committed code is
measured. A missed fault points at a rule that no test pins down.

  scripts/plant-faults.py                              whole suite, every fault
  scripts/plant-faults.py --ctest-args "-LE display"   quick: without the tests
                                  labelled display (GL, windows, end to end)
  scripts/plant-faults.py --only scene-switch-altitude,rain-landing
  scripts/plant-faults.py --revision 251ed91           an earlier commit
  scripts/plant-faults.py --check                      the table fits the code

The whole suite runs as the quick tests first, then the display tests one at
a time, cheapest first by the clean run's times, stopping at the first failure.

Results go to <build-dir>/faults.json, each fault's output to
<build-dir>/logs/<id>.log.
"""
import argparse
import json
import os
import shlex
import shutil
import signal
import subprocess
import sys
import time
from collections import namedtuple
from contextlib import contextmanager
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
Fault = namedtuple("Fault", "id path original replacement kind")
F = Fault

# id, file, original text (exactly once in the file), replacement, kind of fault; grouped by folder.
FAULTS = [
    F("clear-colour", "src/app/GameApp.cpp", "0x0079D3FF;", "0x00D379FF;", "wrong colour word"),
    F("wireframe-command", "src/app/GameAppMessages.cpp", "kWireframe = 40014;", "kWireframe = 40015;",
      "menu command number changed"),
    F("add-op-mapping", "src/app/GameAppMessages.cpp", "= D3DTOP_ADD;", "= D3DTOP_SUBTRACT;", "mapping swapped"),
    F("sky-zwrite-restore", "src/app/GameAppSkyBox.cpp", "  m_device->SetRenderState(D3DRS_ZWRITEENABLE, TRUE);\n", "",
      "state restore skipped"),
    F("device-creation-text", "src/app/GameAppDevice.cpp", '"Device creation failed. The application will now exit."',
      '"Device creation failed. The application will exit now."', "message text changed"),
    F("device-creation-quit", "src/app/GameAppDevice.cpp",
      "    PostQuitMessage(0);\n    return;\n  }\n  m_device", "    return;\n  }\n  m_device", "quit not posted"),
    F("strafe-keys", "src/app/GameAppInput.cpp", "|= MOVE_LEFT;", "|= MOVE_RIGHT;", "key mapping swapped"),
    F("sounds-before-first-step", "src/app/GameAppInput.cpp", "  if (m_playerHasMoved != 0) RunSoundEvents(",
      "  RunSoundEvents(", "condition dropped"),
    F("step-scale", "src/app/GameAppInput.cpp", "STEP_SCALE = 500.0f;", "STEP_SCALE = 480.0f;", "constant changed"),
    F("jump-lift", "src/app/GameAppInput.cpp", "JUMP_LIFT = 7.0f;", "JUMP_LIFT = 6.0f;", "constant changed"),
    F("swim-band-edge", "src/app/GameAppSound.cpp", "water = y >= kDeepBelow", "water = y > kDeepBelow",
      "comparison made strict"),
    F("music-exit-code", "src/app/WinMain.cpp", "if (!music) return 1;", "if (!music) return 0;", "exit code changed"),
    F("timer-history", "src/app/Timer.cpp", "kHistoryLength = 50;", "kHistoryLength = 49;", "timer arithmetic"),
    F("timer-accept-edge", "src/app/Timer.cpp", "< kAcceptanceLimit", "<= kAcceptanceLimit",
      "comparison made non-strict"),
    F("zone-east-edge", "src/app/GameAppSound.cpp", "x < 4200.0f", "x <= 4200.0f", "comparison made non-strict"),
    F("zone-second-west-edge", "src/app/GameAppSound.cpp", "x > 5800.0f", "x >= 5800.0f",
      "comparison made non-strict"),
    F("change-device-menu", "src/app/GameAppDevice.cpp", "  if (m_settings.m_windowed) SetMenu(m_hWnd, m_hMenu);\n",
      "", "state restore skipped"),
    F("change-device-cancel", "src/app/GameAppDevice.cpp",
      "  if (dialog.ShowDialog(&initialize, &m_settings, nullptr) != IDOK) return;\n",
      "  dialog.ShowDialog(&initialize, &m_settings, nullptr);\n", "result not looked at"),
    F("change-device-resets-game", "src/app/GameAppDevice.cpp", "  BuildWorld();\n  ApplyRenderStates();",
      "  BuildWorld();\n  ResetGameState();\n  ApplyRenderStates();", "call added"),
    F("change-device-render-states", "src/app/GameAppDevice.cpp", "  BuildWorld();\n  ApplyRenderStates();\n}",
      "  BuildWorld();\n}", "call dropped"),
    F("render-failure-quit", "src/app/GameAppRenderStates.cpp", "    PostQuitMessage(0);\n    return;", "    return;",
      "quit not posted"),
    F("render-base-depth", "src/app/GameAppRenderStates.cpp", "D3DRS_ZENABLE, D3DZB_TRUE", "D3DRS_ZENABLE, D3DZB_FALSE",
      "base state changed"),
    F("render-stage0-select", "src/app/GameAppRenderStates.cpp", "D3DTSS_COLOROP, D3DTOP_SELECTARG1",
      "D3DTSS_COLOROP, D3DTOP_MODULATE", "base state changed"),
    F("render-stage1-args", "src/app/GameAppRenderStates.cpp",
      "(1, D3DTSS_COLORARG1, D3DTA_CURRENT);\n    m_device->SetTextureStageState(1, D3DTSS_COLORARG2, D3DTA_TEXTURE)",
      "(1, D3DTSS_COLORARG1, D3DTA_TEXTURE);\n    m_device->SetTextureStageState(1, D3DTSS_COLORARG2, D3DTA_CURRENT)",
      "arguments swapped"),
    F("render-min-from-mag", "src/app/GameAppRenderStates.cpp", "(0, D3DSAMP_MINFILTER, m_minFilter)",
      "(0, D3DSAMP_MINFILTER, m_magFilter)", "option mixed up"),
    F("render-op-cap-4x", "src/app/GameAppRenderStates.cpp", "{ID_OP_MODULATE4X, D3DTEXOPCAPS_MODULATE4X,",
      "{ID_OP_MODULATE4X, D3DTEXOPCAPS_MODULATE2X,", "capability mixed up"),
    F("sky-clamp", "src/app/GameAppSkyBox.cpp", "D3DSAMP_ADDRESSU, D3DTADDRESS_CLAMP",
      "D3DSAMP_ADDRESSU, D3DTADDRESS_WRAP", "state not set"),
    F("sky-stage1-off", "src/app/GameAppSkyBox.cpp",
      "  if (m_singlePass) m_device->SetTextureStageState(1, D3DTSS_COLOROP, D3DTOP_DISABLE);\n", "", "call dropped"),
    F("sky-face-files", "src/app/GameAppSkyBox.cpp", '"Data\\\\SkyBox_Left.jpg",\n    "Data\\\\SkyBox_Right.jpg",',
      '"Data\\\\SkyBox_Right.jpg",\n    "Data\\\\SkyBox_Left.jpg",', "file order swapped"),
    F("sky-stop-at-failure", "src/app/GameAppSkyBox.cpp", "    combined |= D3DXCreateTextureFromFileA",
      "    if (FAILED(combined)) break;\n    combined |= D3DXCreateTextureFromFileA", "loop ends early"),

    F("refresh-floor", "src/device/MyD3DInit.cpp", "RefreshRate >= 60", "RefreshRate > 60", "comparison made strict"),
    F("mixed-vp-offered", "src/device/MyD3DInit.cpp", "return type != MIXED_VP;", "return true;", "hook dropped"),
    F("display-format-order", "src/device/D3DInitialize.cpp", "D3DFMT_X1R5G5B5, D3DFMT_R5G6B5}",
      "D3DFMT_R5G6B5, D3DFMT_X1R5G5B5}", "enumeration order changed"),
    F("cancel-gives-ok", "src/device/D3DSettingsDlg.cpp", "EndDialog(hDlg, IDCANCEL);", "EndDialog(hDlg, IDOK);",
      "mapping swapped"),
    F("resolution-text", "src/device/D3DSettingsDlgCascade.cpp", '"%d x %d"', '"%dx%d"', "message text changed"),

    F("left-arrow-key", "src/platform/win32/sdl/Win32SdlKeys.cpp", "{SDLK_LEFT, VK_LEFT},", "{SDLK_LEFT, VK_RIGHT},",
      "key mapping swapped"),
    F("quit-before-posted", "src/platform/win32/Win32Messages.cpp",
      "  if (TakePosted(lpMsg, hWnd, wMsgFilterMin, wMsgFilterMax, remove)) return TRUE;\n"
      "  if (TakeQuit(lpMsg, wMsgFilterMin, wMsgFilterMax, remove)) return TRUE;\n\n  Source&",
      "  if (TakeQuit(lpMsg, wMsgFilterMin, wMsgFilterMax, remove)) return TRUE;\n"
      "  if (TakePosted(lpMsg, hWnd, wMsgFilterMin, wMsgFilterMax, remove)) return TRUE;\n\n  Source&",
      "message order swapped"),
    F("button-up-message", "src/platform/win32/sdl/Win32SdlEvents.cpp", "downMessage + 1", "downMessage + 2",
      "constant changed"),
    F("radio-last-item", "src/platform/win32/Win32Menu.cpp", "check > last", "check >= last",
      "comparison made non-strict"),
    F("menu-shared-key-chooses", "src/platform/win32/overlay/Win32MenuNavigator.cpp", "if (matches.size() == 1) {",
      "if (!matches.empty()) {", "condition widened"),
    F("menu-escape-closes-all", "src/platform/win32/overlay/Win32MenuNavigator.cpp",
      "leaves the bar.\n      levels_.pop_back();", "leaves the bar.\n      Reset();", "one level became all"),
    F("dialog-enter-in-open-list", "src/platform/win32/overlay/Win32DialogNavigator.cpp",
      "if (vk == VK_RETURN || vk == VK_F4 ||", "if (vk == VK_F4 ||", "key dropped"),
    F("dialog-tab-to-disabled", "src/platform/win32/overlay/Win32DialogNavigator.cpp",
      "if (TakesFocus(info.controls[at]) && info.controls[at].enabled) {", "if (TakesFocus(info.controls[at])) {",
      "check dropped"),
    F("command-behind-input", "src/platform/win32/sdl/Win32SdlEvents.cpp",
      "if (Translate(event) && queue.size() > before) break;", "Translate(event);", "event order lost"),

    F("cull-face", "src/platform/d3d9/GLDeviceDraw.cpp", "? GL_BACK : GL_FRONT", "? GL_FRONT : GL_BACK",
      "mapping swapped"),
    F("dest-colour-factor", "src/platform/d3d9/GLDeviceDraw.cpp", "DESTCOLOR: return GL_DST_COLOR;",
      "DESTCOLOR: return GL_SRC_COLOR;", "wrong blend word"),
    F("mip-point-filter", "src/platform/d3d9/GLDeviceDraw.cpp", "? GL_LINEAR_MIPMAP_NEAREST :",
      "? GL_LINEAR_MIPMAP_LINEAR :", "filter mapping wrong"),
    F("default-zfunc", "src/platform/d3d9/GLDeviceState.cpp", "= D3DCMP_LESSEQUAL;", "= D3DCMP_LESS;",
      "default state changed"),
    F("read-back-flip", "src/platform/d3d9/GLDeviceFrame.cpp", "(height - 1 - y) * stride", "y * stride",
      "row order lost"),

    F("look-at-cross", "src/platform/d3dx9/D3DXMath.cpp", "Cross(&xaxis, up, &zaxis)", "Cross(&xaxis, &zaxis, up)",
      "arguments swapped"),
    F("fov-half-angle", "src/platform/d3dx9/D3DXMath.cpp", "std::tan(fovy / 2.0f)", "std::tan(fovy)",
      "factor dropped"),
    F("colour-key-dropped", "src/platform/d3dx9/D3DXTexture.cpp", "  d3dx::ApplyColorKey(image, ColorKey);\n", "",
      "call dropped"),
    F("next-power-of-two", "src/platform/d3dx9/D3DXTextureImage.cpp", "while (p < n &&", "while (p <= n &&",
      "comparison made non-strict"),

    F("bass-version", "src/platform/bass/BassMixer.cpp", "= 0x02040000;", "= 0x02030000;", "constant changed"),
    F("play-restart", "src/platform/bass/BassMixer.cpp", "&& !restart) {", "&& restart) {", "condition inverted"),
    F("playback-limit", "src/platform/bass/BassMixer.cpp", "size() >= sample->max)", "size() > sample->max)",
      "boundary moved by one"),

    F("rand-increment", "src/platform/crt/crt.cpp", "+ 2531011u;", "+ 2531012u;", "constant changed"),
    F("rand-shift", "src/platform/crt/crt.cpp", "(s_state >> 16)", "(s_state >> 15)", "bit shift moved by one"),
    F("short-read-message", "src/platform/crt/FileIo.cpp", '"the file is empty" : "the file ends early"',
      '"the file ends early" : "the file is empty"', "message texts swapped"),

    F("scene-switch-altitude", "src/terrain/TerrainScene.cpp", "= 855.0f;", "= 856.0f;", "threshold moved"),
    F("scene-switch-strict", "src/terrain/TerrainScene.cpp", "altitude >= SWITCH", "altitude > SWITCH",
      "comparison made strict"),
    F("scene-water-steps", "src/terrain/TerrainScene.cpp", "WATER_STEPS = 54.0f;", "WATER_STEPS = 55.0f;",
      "constant changed"),
    F("scene-cull-restore", "src/terrain/TerrainScene.cpp",
      "  m_device->SetRenderState(D3DRS_CULLMODE, D3DCULL_CCW);\n}", "}", "state restore skipped"),
    F("odd-row-split", "src/terrain/TerrainHeight.cpp", "if (fz <= fx) {", "if (fz >= fx) {", "comparison reversed"),
    F("placing-order", "src/terrain/TerrainBlocks.cpp", "  PlaceTrees();\n  PlaceWeeds();",
      "  PlaceWeeds();\n  PlaceTrees();", "call order swapped"),
    F("water-zwrite-restore", "src/terrain/TerrainWater.cpp",
      "  m_device->SetRenderState(D3DRS_ZWRITEENABLE, TRUE);\n", "", "state restore skipped"),
    F("two-pass-blend", "src/terrain/TerrainRender.cpp", "DESTBLEND, D3DBLEND_SRCCOLOR", "DESTBLEND, D3DBLEND_ZERO",
      "wrong blend word"),

    F("pitch-limit", "src/view/Player.cpp", "PITCH_LIMIT = 89.0f;", "PITCH_LIMIT = 90.0f;", "clamp limit changed"),
    F("lift-ceiling", "src/view/Player.cpp", "LIFT_CEILING = 872.0f;", "LIFT_CEILING = 865.0f;", "threshold moved"),
    F("friction-clamp", "src/view/Player.cpp", "  if (length < amount) amount = length;\n", "", "clamping dropped"),
    F("pitch-floor-trim", "src/view/Player.cpp", "        x -= m_pitch + PITCH_LIMIT;\n", "", "trim dropped"),
    F("roll-trim", "src/view/Player.cpp", "        z -= m_roll - ROLL_LIMIT;\n", "", "trim dropped"),
    F("yaw-wrap-zero", "src/view/Player.cpp", "m_yaw < 0.0f", "m_yaw <= 0.0f", "comparison made non-strict"),
    F("walk-east-edge", "src/view/Player.cpp", "vecShiftTest.x > MAP_MAX", "vecShiftTest.x >= MAP_MAX",
      "comparison made non-strict"),
    F("walk-south-edge", "src/view/Player.cpp", "vecShiftTest.z < MAP_MIN", "vecShiftTest.z <= MAP_MIN",
      "comparison made non-strict"),
    F("walk-north-edge", "src/view/Player.cpp", "vecShiftTest.z > MAP_MAX", "vecShiftTest.z >= MAP_MAX",
      "comparison made non-strict"),
    F("tower-row-south-edge", "src/view/Player.cpp", "TOWER_Z_MIN < vecShiftTest.z", "TOWER_Z_MIN <= vecShiftTest.z",
      "comparison made non-strict"),
    F("tower-row-north-edge", "src/view/Player.cpp", "vecShiftTest.z < TOWER_Z_MAX", "vecShiftTest.z <= TOWER_Z_MAX",
      "comparison made non-strict"),
    F("tower-one-east-edge", "src/view/Player.cpp", "vecShiftTest.x < TOWER1_X_MAX", "vecShiftTest.x <= TOWER1_X_MAX",
      "comparison made non-strict"),
    F("tower-two-west-edge", "src/view/Player.cpp", "TOWER2_X_MIN < vecShiftTest.x", "TOWER2_X_MIN <= vecShiftTest.x",
      "comparison made non-strict"),
    F("tower-two-east-edge", "src/view/Player.cpp", "vecShiftTest.x < TOWER2_X_MAX", "vecShiftTest.x <= TOWER2_X_MAX",
      "comparison made non-strict"),
    F("frustum-corner", "src/view/Camera.cpp", "? min.x : max.x", "? max.x : min.x", "mapping swapped"),
    F("diver-tint-colour", "src/view/CameraWaterOverlay.cpp", "TINT_FULL_SCREEN = 0xBF547686u;",
      "TINT_FULL_SCREEN = 0xBF547687u;", "wrong colour word"),
    F("diver-tint-depth", "src/view/CameraWaterOverlay.cpp", "if (level >= nearY)", "if (level >= m_position.y)",
      "condition changed"),
    F("overlay-arg-restore", "src/view/CameraWaterOverlay.cpp",
      "    device->SetTextureStageState(0, D3DTSS_COLORARG1, D3DTA_TEXTURE);\n", "", "state restore skipped"),
    F("overlay-blend-off", "src/view/CameraWaterOverlay.cpp",
      "    device->SetRenderState(D3DRS_ALPHABLENDENABLE, FALSE);\n", "", "state restore skipped"),
    F("chase-lag", "src/view/Cam3rdPerson.cpp", "(1.0f / lag) * timeScale", "lag * timeScale", "timer arithmetic"),

    F("rain-fall-per-frame", "src/world/Rain.cpp", "= 16.0f;", "= 15.0f;", "constant changed"),
    F("rain-landing", "src/world/Rain.cpp", "m_y > LANDING_HEIGHT", "m_y >= LANDING_HEIGHT",
      "comparison made non-strict"),
    F("rain-rebirth-band", "src/world/Rain.cpp", "REBIRTH_FLOOR = 2700;", "REBIRTH_FLOOR = 2600;", "band moved"),
    F("rain-draw-order", "src/world/Rain.cpp",
      "    const float x = RebirthCoordinate(player.x);\n    const float z = RebirthCoordinate(player.z);",
      "    const float z = RebirthCoordinate(player.z);\n    const float x = RebirthCoordinate(player.x);",
      "random draws reordered"),
    F("plant-sort-direction", "src/world/Plants.cpp", "if (d2 > d1)", "if (d2 < d1)", "sort pass reversed"),
    F("tower-zone-edges", "src/world/TerrainPlacement.cpp", "z <= 2800 || z >= 5200", "z < 2800 || z > 5200",
      "comparison made strict"),
    F("tower-zone-x-edge", "src/world/TerrainPlacement.cpp", "(x > 1800 &&", "(x >= 1800 &&",
      "comparison made non-strict"),
    F("tower-zone-two-span", "src/world/TerrainPlacement.cpp", "x > 5800 && x < 8200", "x > 5800 && x < 7200",
      "zone span changed"),
    F("figure-wing-corner", "src/world/Figures.cpp", "z - sinA * px + cosA * pz", "z + sinA * px + cosA * pz",
      "sign flipped"),
    F("figure-random-heading", "src/world/Figures.cpp", "crt::rand() % 360)", "crt::rand() % 359)",
      "modulus changed"),
    F("wing-turn-edge", "src/world/Figures.cpp", "if (m_wingAngle >= WING_LIMIT)", "if (m_wingAngle > WING_LIMIT)",
      "comparison made strict"),
    F("figure-airspace-edge", "src/world/Figures.cpp", "v >= AIRSPACE_MIN && v <= AIRSPACE_MAX",
      "v > AIRSPACE_MIN && v < AIRSPACE_MAX", "comparisons made strict"),
    F("figure-turn-back-west", "src/world/Figures.cpp", "m_x < TURN_BACK_MIN", "m_x <= TURN_BACK_MIN",
      "comparison made non-strict"),
    F("figure-turn-back-north", "src/world/Figures.cpp", "m_z > TURN_BACK_MAX", "m_z >= TURN_BACK_MAX",
      "comparison made non-strict"),
    F("figure-turn-back-south", "src/world/Figures.cpp", "m_z < TURN_BACK_MIN", "m_z <= TURN_BACK_MIN",
      "comparison made non-strict"),
    F("figure-snap-edge", "src/world/Figures.cpp", "< TURN_RATE)", "<= TURN_RATE)", "comparison made non-strict"),
    F("figure-live-count", "src/world/Figures.cpp", "LIVE_FIGURES = 100;", "LIVE_FIGURES = 101;", "count off by one"),
    F("figure-sort-range", "src/world/Figures.cpp", "i < MAX_FIGURES - 1", "i < LIVE_FIGURES - 1",
      "loop bound narrowed"),
    F("figure-sort-equal", "src/world/Figures.cpp", "m_figures[i + 1].m_y > m_figures[i].m_y",
      "m_figures[i + 1].m_y >= m_figures[i].m_y", "comparison made non-strict"),
]

TEST_ENV = {"SDL_AUDIODRIVER": "dummy", "LIBGL_ALWAYS_SOFTWARE": "1"}


def table_problems(root, faults):
    """Faults whose file is missing or whose original text is not in it exactly once."""
    problems, seen = [], set()
    for fault in faults:
        if fault.id in seen:
            problems.append(f"{fault.id}: the id is used twice")
        seen.add(fault.id)
        path = root / fault.path
        count = path.read_bytes().decode("utf-8").count(fault.original) if path.is_file() else None
        if count is None:
            problems.append(f"{fault.id}: {fault.path} does not exist")
        elif count != 1 or fault.original == fault.replacement:
            problems.append(f"{fault.id}: original text found {count} times in {fault.path} (or changes nothing)")
    return problems


def git(*args, cwd=ROOT):
    return subprocess.run(["git", *args], cwd=cwd, check=True, capture_output=True, text=True).stdout.strip()


def run_logged(command, log_path, env=None):
    """True when the command succeeds; its output goes to the log."""
    with open(log_path, "a", encoding="utf-8") as log:
        log.write("$ " + shlex.join(command) + "\n")
        log.flush()
        return subprocess.run(command, env=env, stdout=log, stderr=subprocess.STDOUT).returncode == 0


def prepare_tree(build_dir, revision):
    """The worktree at <build-dir>/tree, made once and moved to the revision (the checkout's HEAD) on every run."""
    tree, head = build_dir / "tree", git("rev-parse", revision)
    if (tree / ".git").exists():
        git("reset", "--hard", "--quiet", cwd=tree)  # whatever an interrupted run left behind
        git("checkout", "--detach", "--quiet", head, cwd=tree)
        git("reset", "--hard", "--quiet", head, cwd=tree)
    else:
        build_dir.mkdir(parents=True, exist_ok=True)
        git("worktree", "prune")
        git("worktree", "add", "--detach", str(tree), head)
    return tree, head


def configure(tree, log):
    command = ["cmake", "-S", str(tree), "-B", str(tree / "build"), "-DKARVO_TESTS=ON", "-DWERROR=OFF",
               "-DKARVO_BENCH=OFF"]
    if shutil.which("ccache"):
        command.append("-DCMAKE_CXX_COMPILER_LAUNCHER=ccache")
    return run_logged(command, log)


def build(tree, log):
    return run_logged(["cmake", "--build", str(tree / "build"), "-j", str(os.cpu_count() or 2)], log)


def ctest(tree, selection, log):
    # One X server for each ctest run, as ./test.sh uses one for the suite; the first failure is answer enough.
    command = ["xvfb-run", "-a", "-s", "-screen 0 1600x1000x24", "ctest", "--test-dir", str(tree / "build"),
               "--output-on-failure", "--stop-on-failure", *selection]
    return run_logged(command, log, env={**os.environ, **TEST_ENV})


def display_tests_cheapest_first(tree):
    """The display tests, cheapest first by the times ctest kept from the clean run."""
    listing = subprocess.run(["ctest", "--test-dir", str(tree / "build"), "-N", "-L", "display"],
                             capture_output=True, text=True).stdout
    names = [line.split(":", 1)[1].strip() for line in listing.splitlines() if line.strip().startswith("Test")
             and ":" in line]
    costs = {}
    cost_file = tree / "build" / "Testing" / "Temporary" / "CTestCostData.txt"
    if cost_file.is_file():
        for line in cost_file.read_text().splitlines():
            parts = line.split()
            if len(parts) == 3:
                costs[parts[0]] = float(parts[2])
    return sorted(names, key=lambda name: costs.get(name, float("inf")))


def tests_pass(tree, ctest_args, log, display_order=None):
    """With explicit ctest arguments, that one run. Otherwise the whole suite, quick tests first: most
    faults fail one of them in seconds; then the display tests one at a time, cheapest first, so a fault
    that only a GL test sees does not wait for the long end-to-end runs."""
    if ctest_args:
        return ctest(tree, ctest_args, log)
    if not ctest(tree, ["-LE", "display"], log):
        return False
    if display_order is None:
        return ctest(tree, ["-L", "display"], log)
    return all(ctest(tree, ["-R", f"^{name}$"], log) for name in display_order)


@contextmanager
def planted(tree, fault):
    """The fault written into the copy; the file's exact bytes come back whatever happens."""
    path = tree / fault.path
    original = path.read_bytes()
    path.write_bytes(original.decode("utf-8").replace(fault.original, fault.replacement, 1).encode("utf-8"))
    try:
        yield
    finally:
        path.write_bytes(original)


def try_fault(tree, fault, ctest_args, log, display_order):
    start = time.monotonic()
    with planted(tree, fault):
        if not build(tree, log):
            result = "build-failed"
        else:
            result = "missed" if tests_pass(tree, ctest_args, log, display_order) else "caught"
    return {"id": fault.id, "folder": str(Path(fault.path).parent), "file": fault.path, "kind": fault.kind,
            "result": result, "seconds": round(time.monotonic() - start, 1)}


def summary_line(results):
    caught, missed, failed = ([r["id"] for r in results if r["result"] == kind]
                              for kind in ("caught", "missed", "build-failed"))
    measured = len(caught) + len(missed)  # a fault that does not build says nothing about the tests
    percent = 100.0 * len(caught) / measured if measured else 0.0
    return (f"caught {len(caught)} of {measured} ({percent:.0f}%); missed: {', '.join(missed) or 'none'}; "
            f"build failed: {', '.join(failed) or 'none'}")


def report(results, head, ctest_args, build_dir):
    print(f"\n{'fault':<24} {'folder':<22} {'result':<13} {'seconds':>8}")
    for r in results:
        print(f"{r['id']:<24} {r['folder']:<22} {r['result']:<13} {r['seconds']:>8.1f}")
    summary = summary_line(results)
    print(summary)
    document = {"commit": head, "ctest_args": ctest_args, "results": results, "summary": summary}
    (build_dir / "faults.json").write_text(json.dumps(document, indent=2) + "\n", encoding="utf-8")


def run_faults(faults, build_dir, ctest_args, revision):
    if not shutil.which("xvfb-run"):
        sys.exit("xvfb-run is missing; ./test.sh installs it (scripts/packages.txt)")
    if revision == "HEAD" and git("status", "--porcelain", "--untracked-files=no"):
        print("note: uncommitted changes are not measured; the copy is HEAD")
    tree, head = prepare_tree(build_dir, revision)
    problems = table_problems(tree, faults)
    if problems:
        sys.exit("the table does not fit HEAD:\n  " + "\n  ".join(problems))
    logs = build_dir / "logs"
    logs.mkdir(exist_ok=True)
    for old in logs.glob("*.log"):
        old.unlink()
    clean_log = logs / "clean.log"
    print(f"clean build and test run of {head[:12]} (log: {clean_log})", flush=True)
    if not (configure(tree, clean_log) and build(tree, clean_log) and tests_pass(tree, ctest_args, clean_log)):
        sys.exit(f"the tests do not pass without a fault; see {clean_log}")
    display_order = None if ctest_args else display_tests_cheapest_first(tree)
    results = []
    try:
        for number, fault in enumerate(faults, 1):
            print(f"[{number}/{len(faults)}] {fault.id} ... ", end="", flush=True)
            results.append(try_fault(tree, fault, ctest_args, logs / f"{fault.id}.log", display_order))
            print(f"{results[-1]['result']} ({results[-1]['seconds']:.0f} s)", flush=True)
    finally:
        report(results, head, ctest_args, build_dir)  # after an interruption: the faults tried so far
    return 0


def select_faults(only):
    by_id = {fault.id: fault for fault in FAULTS}
    wanted = [name.strip() for name in only.split(",") if name.strip()] if only else list(by_id)
    unknown = [name for name in wanted if name not in by_id]
    if unknown:
        sys.exit("unknown fault id: " + ", ".join(unknown))
    return [by_id[name] for name in wanted]


def stop_like_ctrl_c(signum, frame):
    # A terminating signal unwinds as Ctrl-C does, so the planted file is restored.
    raise KeyboardInterrupt


def main():
    parser = argparse.ArgumentParser(description="Plants faults one at a time and sees whether the tests notice.")
    parser.add_argument("--check", action="store_true", help="check the table against the checkout; no build")
    parser.add_argument("--list", action="store_true", help="list the faults")
    parser.add_argument("--build-dir", default="/tmp/karvo-faults", help="copy, build and results (%(default)s)")
    parser.add_argument("--only", help="comma-separated fault ids")
    parser.add_argument("--revision", default="HEAD", help="the commit to measure (%(default)s)")
    parser.add_argument("--ctest-args", default="", help='extra ctest arguments, e.g. "-LE display"')
    arguments = parser.parse_args()
    if arguments.check:
        problems = table_problems(ROOT, FAULTS)
        print("\n".join(problems) if problems else f"all {len(FAULTS)} faults fit the code")
        return 1 if problems else 0
    if arguments.list:
        for fault in FAULTS:
            print(f"{fault.id:<24} {fault.path:<42} {fault.kind}")
        return 0
    signal.signal(signal.SIGTERM, stop_like_ctrl_c)
    try:
        return run_faults(select_faults(arguments.only), Path(arguments.build_dir).resolve(),
                          shlex.split(arguments.ctest_args), arguments.revision)
    except subprocess.CalledProcessError as error:
        sys.exit(f"{shlex.join(error.cmd)} failed:\n{error.stderr}")
    except KeyboardInterrupt:
        print("\ninterrupted")
        return 130


if __name__ == "__main__":
    sys.exit(main())
