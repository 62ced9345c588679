// @ts-check

/**
 * Reads a file that ships with the page. The page's own scheme answers XMLHttpRequest; fetch() always fails on it.
 *
 * @param {string} path relative to the page
 * @returns {Promise<Uint8Array<ArrayBuffer>>}
 */
export function fetchBytes(path) {
  return new Promise((resolve, reject) => {
    const request = new XMLHttpRequest();
    request.open("GET", path);
    request.responseType = "arraybuffer";
    request.onload = () => resolve(new Uint8Array(request.response));
    request.onerror = () => reject(new Error(`${path} cannot be read.`));
    request.send();
  });
}
