import {render} from 'preact';
import {App} from './App';
import {EmbeddedSource} from './data/EmbeddedSource';
import './styles/page.css';
import './styles/table.css';
import './styles/views.css';

const root = document.getElementById('view')!;
try {
  render(<App source={new EmbeddedSource(document)} />, root);
} catch (error) {
  root.textContent = (error as Error).message;
}
