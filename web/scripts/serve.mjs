// Serves a folder of static files on 127.0.0.1, as any web server would host
// the page: ./web.sh and the browser test use it.
//
//   node web/scripts/serve.mjs <folder> [port]      (port 0: any free one)
import { createServer } from 'node:http';
import { readFile } from 'node:fs/promises';
import { extname, join, normalize } from 'node:path';

const types = {
  '.html': 'text/html; charset=utf-8', '.js': 'text/javascript', '.wasm': 'application/wasm',
  '.data': 'application/octet-stream', '.png': 'image/png',
};

export function serve(folder, port) {
  const server = createServer(async (request, response) => {
    const path = normalize(decodeURIComponent(new URL(request.url, 'http://x').pathname));
    const file = join(folder, path.endsWith('/') ? path + 'index.html' : path);
    try {
      const body = await readFile(file);
      response.writeHead(200, { 'Content-Type': types[extname(file)] || 'application/octet-stream' });
      response.end(body);
    } catch {
      response.writeHead(404, { 'Content-Type': 'text/plain' });
      response.end('not found');
    }
  });
  return new Promise((resolve, reject) => {
    server.once('error', reject);
    server.listen(port, '127.0.0.1', () => resolve(server));
  });
}

if (process.argv[1] && process.argv[1].endsWith('serve.mjs')) {
  const [folder, port = '8080'] = process.argv.slice(2);
  try {
    const server = await serve(folder, Number(port));
    console.log(`Karvo Terrain is at http://127.0.0.1:${server.address().port}/  (Ctrl+C ends)`);
  } catch (error) {
    console.error(error.code === 'EADDRINUSE' ? `port ${port} is in use: choose another, e.g. PORT=8081 ./web.sh`
                                              : `cannot serve on port ${port}: ${error.message}`);
    process.exit(1);
  }
}
