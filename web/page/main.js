// The page of orvanverb-live: its engine is at the socket of whoever served it.
import { Page } from "./page.js";
import { SocketConnection } from "./socket_connection.js";

new Page(document.querySelector("main"), new SocketConnection(SocketConnection.addressOfPage()));
