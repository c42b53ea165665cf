// The engine at the other end of a WebSocket: the program orvanverb-live, which served this page.

const firstRetry = 250; // [ms]
const lastRetry = 4000;

/** Messages to and from an engine; see README.md for what they hold. Once opened it opens itself again whenever the
 * engine goes away, until it is closed.
 *
 *     const connection = new SocketConnection(SocketConnection.addressOfPage());
 *     connection.onopen = () => {};
 *     connection.onmessage = (message) => {};
 *     connection.onclose = (reason) => {};
 *     connection.open();
 *     connection.send({controls: {tr0: 2.5}});
 */
export class SocketConnection {
  /** Called when messages can be sent; the first one that comes is a snapshot. */
  onopen = () => {};
  /** Called with each message, an object. */
  onmessage = () => {};
  /** Called, with words for people, when the engine has gone away, and for each attempt that failed. */
  onclose = () => {};

  #address;
  #socket = null;
  #wanted = false;
  #retry = firstRetry;

  /** @param {string | URL} address  ws://host:port/socket?token=... */
  constructor(address) {
    this.#address = address;
  }

  /** Where the engine of the page at hand is. The page's own address carries the token, where one is needed. */
  static addressOfPage(location = window.location) {
    const address = new URL("socket", location.href);
    address.protocol = location.protocol === "https:" ? "wss:" : "ws:";
    const token = new URLSearchParams(location.search).get("token");
    address.search = token ? `?token=${encodeURIComponent(token)}` : "";
    address.hash = "";
    return address;
  }

  open() {
    this.#wanted = true;
    this.#connect();
  }

  close() {
    this.#wanted = false;
    this.#socket?.close();
  }

  /** Sends a message; what can't be sent now is lost, and the next snapshot tells how things are.
   * @returns {boolean} whether it was sent */
  send(message) {
    if (this.#socket?.readyState !== WebSocket.OPEN) return false;
    this.#socket.send(JSON.stringify(message));
    return true;
  }

  #connect() {
    const socket = new WebSocket(this.#address);
    this.#socket = socket;
    socket.onopen = () => {
      this.#retry = firstRetry;
      this.onopen();
    };
    socket.onmessage = (event) => this.onmessage(JSON.parse(event.data));
    socket.onclose = (event) => {
      this.onclose(event.reason || "the engine has gone away");
      if (!this.#wanted) return;
      setTimeout(() => this.#wanted && this.#connect(), this.#retry);
      this.#retry = Math.min(2 * this.#retry, lastRetry);
    };
  }
}
