// The web page in a real browser: Debian's Chromium, headless, drawing WebGL2
// on SwiftShader, driven by puppeteer-core. One visit, in the order a visitor
// goes: the start view (compared with the native program's picture of the
// same start), the sound after the first key, walking and turning, Wireframe
// through the menu by keyboard, the settings dialog cancelled, full screen
// and back, Exit, and a second visit with a broken picture. No
// error may reach the console on the way. Prints the page's measurements.
//
//   node browser-test.mjs --site DIR --capture BIN --assets DIR --out DIR
import { execFileSync } from 'node:child_process';
import { mkdirSync, readFileSync, writeFileSync } from 'node:fs';
import { join, resolve } from 'node:path';
import puppeteer from 'puppeteer-core';
import { serve } from '../scripts/serve.mjs';

const args = Object.fromEntries(
  process.argv.slice(2).reduce((pairs, a, i, all) => (a.startsWith('--') ? [...pairs, [a.slice(2), all[i + 1]]] : pairs), []));
const out = resolve(args.out || 'web-test-output');
mkdirSync(out, { recursive: true });

let failures = 0;
function check(name, ok, detail = '') {
  console.log(`${ok ? 'ok  ' : 'FAIL'} ${name}${detail ? ': ' + detail : ''}`);
  if (!ok) failures++;
}

// The native program's picture of the start, from the capture tool (frame 30
// of a fixed clock: the walker stands where it started).
execFileSync(resolve(args.capture), ['--frames', '30', '--prefix', 'native', '--out', out],
  { cwd: resolve(args.assets), stdio: 'ignore' });
const nativePng = readFileSync(join(out, 'native_0030.png'));

const server = await serve(resolve(args.site), 0);
const url = `http://127.0.0.1:${server.address().port}/`;
const browser = await puppeteer.launch({
  executablePath: process.env.CHROMIUM || '/usr/bin/chromium',
  headless: true,
  args: ['--no-sandbox', '--use-angle=swiftshader', '--enable-unsafe-swiftshader', '--mute-audio',
    // As a desktop browser does: no sound before the visitor's first gesture.
    '--autoplay-policy=user-gesture-required'],
});
const errors = [];
try {
  const page = await browser.newPage();
  await page.setViewport({ width: 1300, height: 820 });
  page.on('console', (m) => { if (m.type() === 'error') errors.push(m.text()); });
  page.on('pageerror', (e) => errors.push(e.message));

  const frames = () => page.evaluate(() => (window.Module && Module.karvoFrames) || 0);
  const waitFrames = async (n, timeout = 60000) => {
    const target = (await frames()) + n;
    await page.waitForFunction((t) => Module.karvoFrames >= t, { timeout, polling: 50 }, target);
  };
  const tap = async (...keys) => { for (const k of keys) { await page.keyboard.press(k); await waitFrames(2); } };

  // The client area: the canvas below the menu bar, as big as the native picture.
  const nativeSize = await page.evaluate(async (b64) => {
    const img = await createImageBitmap(await (await fetch('data:image/png;base64,' + b64)).blob());
    return { width: img.width, height: img.height };
  }, nativePng.toString('base64'));
  const shot = async (name) => {
    const box = await (await page.$('#canvas')).boundingBox();
    const png = await page.screenshot({
      clip: { x: box.x, y: box.y + box.height - nativeSize.height, width: nativeSize.width, height: nativeSize.height },
    });
    writeFileSync(join(out, name + '.png'), png);
    return png;
  };
  // Mean colours of a 12 x 8 grid over a picture, decoded by the browser.
  const grid = (png) => page.evaluate(async (b64) => {
    const img = await createImageBitmap(await (await fetch('data:image/png;base64,' + b64)).blob());
    const c = new OffscreenCanvas(img.width, img.height);
    const g = c.getContext('2d');
    g.drawImage(img, 0, 0);
    const d = g.getImageData(0, 0, img.width, img.height).data;
    const cells = [];
    let top = 0, tally = new Map();
    for (let i = 0; i < d.length; i += 4) {
      const key = (d[i] << 16) | (d[i + 1] << 8) | d[i + 2];
      const n = (tally.get(key) || 0) + 1;
      tally.set(key, n);
      top = Math.max(top, n);
    }
    for (let cy = 0; cy < 8; cy++)
      for (let cx = 0; cx < 12; cx++) {
        const sum = [0, 0, 0];
        let n = 0;
        for (let y = Math.floor(cy * img.height / 8); y < Math.floor((cy + 1) * img.height / 8); y++)
          for (let x = Math.floor(cx * img.width / 12); x < Math.floor((cx + 1) * img.width / 12); x++, n++)
            for (let k = 0; k < 3; k++) sum[k] += d[(y * img.width + x) * 4 + k];
        cells.push(sum.map((s) => s / n));
      }
    // The share of the most common colour: a picture of lines is mostly its background.
    return { cells, commonest: top / (d.length / 4) };
  }, png.toString('base64'));
  // Share of cells whose mean colours lie within `near` of each other.
  const alike = (a, b, near = 40) =>
    a.cells.filter((c, i) => Math.hypot(...c.map((v, k) => v - b.cells[i][k])) < near).length / a.cells.length;
  const title = () => page.title();
  const soundHint = () => page.$eval('#sound', (e) => !e.hidden);

  const started = Date.now();
  await page.goto(url, { waitUntil: 'load' });
  await waitFrames(1, 120000);
  const firstFrame = await page.evaluate(() => Module.karvoFirstFrame);
  await waitFrames(30);
  const t0 = await page.evaluate(() => [performance.now(), Module.karvoFrames]);
  await new Promise((r) => setTimeout(r, 4000));
  const t1 = await page.evaluate(() => [performance.now(), Module.karvoFrames]);
  const fps = (t1[1] - t0[1]) / ((t1[0] - t0[0]) / 1000);

  const start = await grid(await shot('web-start'));
  const native = await grid(nativePng);
  const startAlike = alike(start, native);
  check('the start view has the native picture\'s structure', startAlike >= 0.85,
    `${Math.round(startAlike * 100)}% of 96 cells alike`);
  check('the title shows the frame rate', /FPS/.test(await title()), await title());

  // Sound: off until the first gesture. Headless Chromium may start audio
  // without one; then it is suspended here, as a desktop browser keeps it.
  await page.waitForFunction(() => Module.SDL2 && Module.SDL2.audioContext, { timeout: 10000 });
  await page.evaluate(() => Module.SDL2.audioContext.suspend());
  await new Promise((r) => setTimeout(r, 600));
  check('while the sound is off the page says how to turn it on', await soundHint());
  const titleBefore = await title();
  await page.keyboard.down('ArrowUp');
  await waitFrames(20);
  await page.keyboard.up('ArrowUp');
  await waitFrames(5);
  const walked = await grid(await shot('web-walked'));
  // The program rewrites its title when the whole-number frame rate changes:
  // a slower processor for a while makes it change.
  const place = (t) => t.split(' : ').slice(2).join(' : ');
  const cdp = await page.createCDPSession();
  await cdp.send('Emulation.setCPUThrottlingRate', { rate: 4 });
  const moved = await page.waitForFunction((p) => document.title.split(' : ').slice(2).join(' : ') !== p,
    { timeout: 30000 }, place(titleBefore)).then(() => true, () => false);
  await cdp.send('Emulation.setCPUThrottlingRate', { rate: 1 });
  check('Up walks: the title\'s position changes', moved, await title());
  check('Up walks: the picture changes', alike(walked, start, 12) < 0.9);
  const running = await page.waitForFunction(() => Module.SDL2.audioContext && Module.SDL2.audioContext.state === 'running',
    { timeout: 5000 }).then(() => true, () => false);
  check('after a key the audio runs', running);
  await page.evaluate(() => {
    const node = Module.SDL2.audio.scriptProcessorNode;
    const mix = node.onaudioprocess;
    window.karvoPeak = 0;
    node.onaudioprocess = (e) => {
      mix(e);
      for (const v of e.outputBuffer.getChannelData(0)) window.karvoPeak = Math.max(window.karvoPeak, Math.abs(v));
    };
  });
  const loud = await page.waitForFunction(() => window.karvoPeak > 0.01, { timeout: 5000 }).then(() => true, () => false);
  check('the mixer plays sound', loud, 'peak ' + (await page.evaluate(() => window.karvoPeak)).toFixed(3));
  check('the sound hint is gone', !(await soundHint()));

  await page.keyboard.down('ArrowLeft');
  await waitFrames(15);
  await page.keyboard.up('ArrowLeft');
  await waitFrames(5);
  const turned = await grid(await shot('web-turned'));
  check('Left turns: the picture changes', alike(turned, walked, 12) < 0.9);

  // Alt, then Render States > Fill Mode > Wireframe by arrows.
  await tap('Alt', 'ArrowRight', 'ArrowRight', 'ArrowDown', 'ArrowRight', 'ArrowDown', 'Enter');
  await waitFrames(10);
  const wire = await grid(await shot('web-wireframe'));
  check('Wireframe turns the picture to lines', wire.commonest > 0.3 && turned.commonest < 0.2,
    `commonest colour ${Math.round(turned.commonest * 100)}% -> ${Math.round(wire.commonest * 100)}%`);

  // File > Change Device, then Cancel by Escape: nothing changes.
  const size = () => page.$eval('#canvas', (c) => [c.width, c.height].join('x'));
  const sizeBefore = await size();
  await tap('Alt', 'ArrowDown', 'Enter');
  await waitFrames(10);
  const dialog = await grid(await shot('web-dialog'));
  check('the settings dialog opens over the world', alike(dialog, wire, 12) < 0.9);
  await tap('Escape');
  await waitFrames(10);
  const after = await grid(await shot('web-cancelled'));
  check('Cancel leaves the picture as it was', alike(after, wire, 12) >= 0.9 && after.commonest > 0.3);
  check('Cancel leaves the canvas size as it was', (await size()) === sizeBefore, await size());

  // Shift+Enter: into the browser's full screen and out again.
  const fullScreen = () => page.evaluate(() => !!document.fullscreenElement);
  const shiftEnter = async () => {
    await page.keyboard.down('Shift');
    await page.keyboard.press('Enter');
    await page.keyboard.up('Shift');
    await waitFrames(15);
  };
  await shiftEnter();
  check('Shift+Enter enters full screen', await fullScreen());
  await shiftEnter();
  check('Shift+Enter leaves full screen', !(await fullScreen()));

  // File > Exit (the last entry of the menu).
  await tap('Alt', 'ArrowDown', 'ArrowUp');
  await page.keyboard.press('Enter');
  const ended = await page.waitForFunction(() => !document.getElementById('ended').hidden, { timeout: 20000 })
    .then(() => true, () => false);
  check('Exit leaves the page that says so', ended);
  await page.screenshot({ path: join(out, 'web-ended.png') });

  // A broken picture ends the start (exit code 0) and is named, in the page.
  const script = readFileSync(join(resolve(args.site), 'karvo-terrain.js'), 'utf8');
  const [, from, to] = script.match(/"filename":"\/Data\/rain.png","start":(\d+),"end":(\d+)/).map(Number);
  const broken = Buffer.from(readFileSync(join(resolve(args.site), 'karvo-terrain.data')));
  broken.fill(0x5a, from, to);
  await page.setRequestInterception(true);
  page.on('request', (r) => (r.url().endsWith('.data')
    ? r.respond({ status: 200, contentType: 'application/octet-stream', body: broken }) : r.continue()));
  await page.goto(url, { waitUntil: 'load' });
  const told = await page.waitForFunction(() => !document.getElementById('ended').hidden, { timeout: 60000 })
    .then(() => page.$eval('#ended-text', (e) => e.textContent), () => '');
  check('a broken picture ends the program, named in the page', /Data\/rain.png: it is not a JPEG or PNG picture/.test(told),
    told.replace(/\n/g, ' / '));

  check('no error reached the console', errors.length === 0, errors.join(' | '));
  console.log(`measured: first frame ${Math.round(firstFrame)} ms after the page began loading ` +
    `(${Date.now() - started} ms test so far); ${fps.toFixed(1)} frames per second at the start view`);
} finally {
  await browser.close();
  server.close();
}
console.log(failures ? `${failures} checks failed` : 'all checks passed');
process.exit(failures ? 1 : 0);
