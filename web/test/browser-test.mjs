// The web page in a real browser: Debian's Chromium, headless, drawing WebGL2
// on SwiftShader, driven by puppeteer-core. One visit, in the order a visitor
// goes: the start view (compared with the native program's picture of the
// same start), the sound after the first key, walking and turning, Wireframe
// through the menu by keyboard, the settings dialog cancelled, full screen
// and back, Exit; then a visit with a broken picture, one from a browser
// without WebGL2, and one from Firefox, whose Wireframe is drawn as lines. No
// error may reach the console on the way. Prints the page's measurements.
//
//   node browser-test.mjs --site DIR --capture BIN --assets DIR --out DIR
import { execFileSync } from 'node:child_process';
import { mkdirSync, readFileSync, writeFileSync } from 'node:fs';
import { join, resolve } from 'node:path';
import puppeteer from 'puppeteer-core';
import { serve } from '../scripts/serve.mjs';

const arg = (name) => resolve(process.argv[process.argv.indexOf('--' + name) + 1]);
const out = arg('out');
mkdirSync(out, { recursive: true });
let failures = 0;
function check(name, ok, detail = '') {
  console.log(`${ok ? 'ok  ' : 'FAIL'} ${name}${detail ? ': ' + detail : ''}`);
  if (!ok) failures++;
}

// The native program's picture of the start: frame 30 of a fixed clock, the
// walker standing where it started.
execFileSync(arg('capture'), ['--frames', '30', '--prefix', 'native', '--out', out], { cwd: arg('assets'), stdio: 'ignore' });
const nativePng = readFileSync(join(out, 'native_0030.png'));
const server = await serve(arg('site'), 0);
const url = `http://127.0.0.1:${server.address().port}/`;
const browser = await puppeteer.launch({
  executablePath: process.env.CHROMIUM || '/usr/bin/chromium',
  headless: true,
  // As a desktop browser does: no sound before the visitor's first gesture.
  args: ['--no-sandbox', '--use-angle=swiftshader', '--enable-unsafe-swiftshader', '--mute-audio',
    '--autoplay-policy=user-gesture-required'],
});
const errors = [];
const native = { width: 0, height: 0 };
// A page of a browser, with the console watched, and the ways to look at it.
async function visit(browser) {
  const page = await browser.newPage();
  await page.setViewport({ width: 1300, height: 820 });
  page.on('console', (m) => { if (m.type() === 'error') errors.push(m.text()); });
  page.on('pageerror', (e) => errors.push(e.message));
  const until = (f, timeout, ...a) => page.waitForFunction(f, { timeout, polling: 50 }, ...a).then(() => true, () => false);
  const waitFrames = async (n, timeout = 60000) =>
    until((t) => Module.karvoFrames >= t, timeout, (await page.evaluate(() => window.Module?.karvoFrames || 0)) + n);
  const tap = async (...keys) => { for (const k of keys) { await page.keyboard.press(k); await waitFrames(2); } };
  const hold = async (key, frames) => { await page.keyboard.down(key); await waitFrames(frames); await page.keyboard.up(key); await waitFrames(5); };
  // Mean colours of a 12 x 8 grid, decoded by the browser, and the share of
  // the commonest colour (a picture of lines is mostly its background).
  const grid = (png) => page.evaluate(async (b64) => {
    const img = await createImageBitmap(await (await fetch('data:image/png;base64,' + b64)).blob());
    const g = new OffscreenCanvas(img.width, img.height).getContext('2d');
    g.drawImage(img, 0, 0);
    const d = g.getImageData(0, 0, img.width, img.height).data, tally = new Map(), cells = [];
    for (let i = 0; i < d.length; i += 4) { const k = (d[i] << 16) | (d[i + 1] << 8) | d[i + 2]; tally.set(k, (tally.get(k) || 0) + 1); }
    for (let cy = 0; cy < 8; cy++)
      for (let cx = 0; cx < 12; cx++) {
        const sum = [0, 0, 0];
        let n = 0;
        for (let y = Math.floor(cy * img.height / 8); y < Math.floor((cy + 1) * img.height / 8); y++)
          for (let x = Math.floor(cx * img.width / 12); x < Math.floor((cx + 1) * img.width / 12); x++, n++)
            for (let k = 0; k < 3; k++) sum[k] += d[(y * img.width + x) * 4 + k];
        cells.push(sum.map((s) => s / n));
      }
    return { cells, width: img.width, height: img.height, commonest: Math.max(...tally.values()) / (d.length / 4) };
  }, png.toString('base64'));
  // The client area (the canvas below the menu bar), as big as the native picture.
  const shot = async (name) => {
    const box = await (await page.$('#canvas')).boundingBox();
    const png = await page.screenshot({ clip: { x: box.x, y: box.y + box.height - native.height, width: native.width, height: native.height } });
    writeFileSync(join(out, name + '.png'), png);
    return grid(png);
  };
  return { page, until, waitFrames, tap, hold, grid, shot };
}
// Share of cells whose mean colours lie within `near` of each other.
const alike = (a, b, near = 40) => a.cells.filter((c, i) => Math.hypot(...c.map((v, k) => v - b.cells[i][k])) < near).length / 96;
// Alt, then Render States > Fill Mode > Wireframe by arrows.
const wireframeKeys = ['Alt', 'ArrowRight', 'ArrowRight', 'ArrowDown', 'ArrowRight', 'ArrowDown', 'Enter'];

try {
  const { page, until, waitFrames, tap, hold, grid, shot } = await visit(browser);
  Object.assign(native, await grid(nativePng));
  const soundHint = () => page.$eval('#sound', (e) => !e.hidden);

  await page.goto(url, { waitUntil: 'load' });
  await waitFrames(30, 120000);
  const firstFrame = await page.evaluate(() => Module.karvoFirstFrame);
  const rate = await page.evaluate(() => new Promise((r) => {
    const [t, n] = [performance.now(), Module.karvoFrames];
    setTimeout(() => r((Module.karvoFrames - n) / ((performance.now() - t) / 1000)), 4000);
  }));
  const start = await shot('web-start');
  check('the start view has the native picture\'s structure', alike(start, native) >= 0.85, `${Math.round(alike(start, native) * 96)} of 96 cells alike`);
  const titleBefore = await page.title();
  check('the title shows the frame rate', /FPS/.test(titleBefore), titleBefore);

  // Headless Chromium may start audio without a gesture: then it is suspended
  // here, as a desktop browser keeps it.
  await until(() => Module.SDL2?.audioContext, 10000);
  await page.evaluate(() => Module.SDL2.audioContext.suspend());
  await new Promise((r) => setTimeout(r, 600));
  check('while the sound is off the page says how to turn it on', await soundHint());
  await hold('ArrowUp', 20);
  const walked = await shot('web-walked');
  check('Up walks: the picture changes', alike(walked, start, 12) < 0.9);
  check('after a key the audio runs', await until(() => Module.SDL2.audioContext.state === 'running', 5000));
  await page.evaluate(() => {
    const node = Module.SDL2.audio.scriptProcessorNode, mix = node.onaudioprocess;
    window.karvoPeak = 0;
    node.onaudioprocess = (e) => { mix(e); for (const v of e.outputBuffer.getChannelData(0)) karvoPeak = Math.max(karvoPeak, Math.abs(v)); };
  });
  check('the mixer plays sound', await until(() => karvoPeak > 0.01, 5000), 'peak ' + (await page.evaluate(() => karvoPeak)).toFixed(3));
  check('the sound hint is gone', !(await soundHint()));
  await hold('ArrowLeft', 15);
  const turned = await shot('web-turned');
  check('Left turns: the picture changes', alike(turned, walked, 12) < 0.9);

  await tap(...wireframeKeys);
  await waitFrames(10);
  const wire = await shot('web-wireframe');
  check('Wireframe turns the picture to lines', wire.commonest > 0.3 && turned.commonest < 0.2,
    `commonest colour ${Math.round(turned.commonest * 100)}% -> ${Math.round(wire.commonest * 100)}%`);

  // File > Change Device, then Cancel by Escape: nothing changes.
  const size = () => page.$eval('#canvas', (c) => [c.width, c.height].join('x'));
  const sizeBefore = await size();
  await tap('Alt', 'ArrowDown', 'Enter');
  await waitFrames(10);
  check('the settings dialog opens over the world', alike(await shot('web-dialog'), wire, 12) < 0.9);
  await tap('Escape');
  await waitFrames(10);
  const after = await shot('web-cancelled');
  check('Cancel leaves the picture as it was', alike(after, wire, 12) >= 0.9 && after.commonest > 0.3);
  check('Cancel leaves the canvas size as it was', (await size()) === sizeBefore, await size());

  for (const into of [true, false]) {
    await page.keyboard.down('Shift');
    await page.keyboard.press('Enter');
    await page.keyboard.up('Shift');
    await waitFrames(15);
    check(`Shift+Enter ${into ? 'enters' : 'leaves'} full screen`, (await page.evaluate(() => !!document.fullscreenElement)) === into);
  }

  // The program rewrites its title, with the walker's place, when the
  // whole-number frame rate changes, as it has by now or does under a slower
  // processor: slower by half a second a frame, since frames a second longer
  // than the mean do not count.
  const cdp = await page.createCDPSession();
  await cdp.send('Emulation.setCPUThrottlingRate', { rate: 1 + rate / 2 });
  const place = (t) => t.split(' : ').slice(2).join(' : ');
  const moved = await until((p) => document.title.split(' : ').slice(2).join(' : ') !== p, 90000, place(titleBefore));
  await cdp.send('Emulation.setCPUThrottlingRate', { rate: 1 });
  check('Up walks: the title\'s position changes', moved, await page.title());

  // File > Exit, the last entry of the menu.
  await tap('Alt', 'ArrowDown', 'ArrowUp');
  await page.keyboard.press('Enter');
  check('Exit leaves the page that says so', await until(() => !document.getElementById('ended').hidden, 20000));
  await page.screenshot({ path: join(out, 'web-ended.png') });

  // A broken picture ends the start (exit code 0) and is named in the page.
  const [, from, to] = readFileSync(join(arg('site'), 'karvo-terrain.js'), 'utf8')
    .match(/"filename":"\/Data\/rain.png","start":(\d+),"end":(\d+)/).map(Number);
  const broken = Buffer.from(readFileSync(join(arg('site'), 'karvo-terrain.data'))).fill(0x5a, from, to);
  await page.setRequestInterception(true);
  page.on('request', (r) => (r.url().endsWith('.data') ? r.respond({ status: 200, body: broken }) : r.continue()));
  await page.goto(url, { waitUntil: 'load' });
  await until(() => !document.getElementById('ended').hidden, 60000);
  const told = await page.$eval('#ended-text', (e) => e.textContent);
  check('a broken picture ends the program, named in the page', told.includes('Data/rain.png: it is not a JPEG or PNG picture'),
    told.replace(/\n/g, ' / '));

  // A browser without WebGL2 is told so, in the page.
  await page.evaluateOnNewDocument(() => {
    const get = HTMLCanvasElement.prototype.getContext;
    HTMLCanvasElement.prototype.getContext = function (kind, ...a) { return kind === 'webgl2' ? null : get.call(this, kind, ...a); };
  });
  await page.goto(url, { waitUntil: 'load' });
  check('without WebGL2 the page says so', await page.$eval('#message', (e) => !e.hidden && /WebGL 2/.test(e.textContent)));

  console.log(`measured: first frame ${Math.round(firstFrame)} ms after the page began loading; ` +
    `${rate.toFixed(1)} frames per second at the start view`);
} finally {
  await browser.close();
}

// Firefox has no WEBGL_polygon_mode: its Wireframe is the back end's line
// lists. It draws WebGL2 with a window (Xvfb in ./test.sh), not headless.
const firefox = await puppeteer.launch({
  browser: 'firefox', executablePath: process.env.FIREFOX || '/usr/bin/firefox-esr', headless: false,
  extraPrefsFirefox: { 'webgl.force-enabled': true, 'webgl.disable-fail-if-major-performance-caveat': true },
});
try {
  const { page, waitFrames, tap, shot } = await visit(firefox);
  await page.goto(url, { waitUntil: 'load' });
  await waitFrames(10, 120000);
  check('Firefox draws the start view', alike(await shot('firefox-start'), native) >= 0.85);
  check('Firefox has no polygon mode', !(await page.evaluate(() =>
    document.createElement('canvas').getContext('webgl2').getSupportedExtensions().includes('WEBGL_polygon_mode'))));
  await tap(...wireframeKeys);
  await waitFrames(10);
  const wire = await shot('firefox-wireframe');
  check('Firefox draws Wireframe as lines', wire.commonest > 0.3, `commonest colour ${Math.round(wire.commonest * 100)}%`);
} finally {
  await firefox.close();
  server.close();
}
check('no error reached the console', errors.length === 0, errors.join(' | '));
console.log(failures ? `${failures} checks failed` : 'all checks passed');
process.exit(failures ? 1 : 0);
